// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include <QList>
#include <QUrl>
#include <QWidget>

class QLabel;
class QMovie;
class QPlainTextEdit;
class QStackedWidget;
class QPdfDocument;
class QPdfView;

namespace Vantrope {

// A quick look at the items, one at a time: pictures (animated ones move), the first megabyte of a text,
// PDF documents, and for anything else a large icon with the name, kind, size and dates.
// Left and Right go between the items; Space or Escape closes it. It deletes itself when closed.
class PreviewWindow final : public QWidget {
    Q_OBJECT

public:
    enum class Kind { image, animation, text, pdf, summary };

    // How much of a text file is shown.
    static constexpr qint64 textLimit = 1024 * 1024;

    explicit PreviewWindow(QList<QUrl> urls, QWidget* parent = nullptr);
    ~PreviewWindow() override;

    int currentIndex() const { return m_index; }
    Kind currentKind() const { return m_kind; }
    QList<QUrl> urls() const { return m_urls; }
    // The text shown for a text item, or the lines of the summary.
    QString shownText() const;
    // Whether this build shows PDF documents itself.
    static bool showsPdf();

    void showItem(int index);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Kind kindOf(const QString& path) const;
    void showImage(const QString& path);
    void showAnimation(const QString& path);
    void showText(const QString& path);
    bool showPdf(const QString& path);
    void showSummary(const QString& path);

    QList<QUrl> m_urls;
    int m_index = -1;
    Kind m_kind = Kind::summary;
    QStackedWidget* m_stack = nullptr;
    QLabel* m_picture = nullptr;
    QPlainTextEdit* m_text = nullptr;
    QWidget* m_summary = nullptr;
    QLabel* m_summaryIcon = nullptr;
    QLabel* m_summaryText = nullptr;
    QMovie* m_movie = nullptr;
    QPdfDocument* m_pdfDocument = nullptr;
    QPdfView* m_pdfView = nullptr;
};

} // namespace Vantrope
