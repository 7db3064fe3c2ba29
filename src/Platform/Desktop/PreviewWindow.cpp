// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "PreviewWindow.h"

#include "Libraries/Core/Localized.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QIcon>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMimeDatabase>
#include <QMovie>
#include <QPlainTextEdit>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

#ifdef VANTROPE_HAVE_QT_PDF
#include <QPdfDocument>
#include <QPdfView>
#endif

namespace Vantrope {

namespace {

const QSize pictureBounds(1000, 750);

QString formattedDate(const QDateTime& date)
{
    return date.isValid() ? QLocale().toString(date, QLocale::LongFormat) : QString();
}

} // namespace

PreviewWindow::PreviewWindow(QList<QUrl> urls, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_urls(std::move(urls))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFocusPolicy(Qt::StrongFocus);

    m_stack = new QStackedWidget(this);
    m_picture = new QLabel(m_stack);
    m_picture->setAlignment(Qt::AlignCenter);
    m_text = new QPlainTextEdit(m_stack);
    m_text->setReadOnly(true);
    m_text->setFocusPolicy(Qt::NoFocus);
    m_text->setFont(QFont(QStringLiteral("monospace")));

    m_summary = new QWidget(m_stack);
    auto* summaryLayout = new QHBoxLayout(m_summary);
    m_summaryIcon = new QLabel(m_summary);
    m_summaryText = new QLabel(m_summary);
    m_summaryText->setTextFormat(Qt::PlainText);
    m_summaryText->setWordWrap(true);
    summaryLayout->addWidget(m_summaryIcon);
    summaryLayout->addWidget(m_summaryText, 1);

    m_stack->addWidget(m_picture);
    m_stack->addWidget(m_text);
    m_stack->addWidget(m_summary);
#ifdef VANTROPE_HAVE_QT_PDF
    m_pdfDocument = new QPdfDocument(this);
    m_pdfView = new QPdfView(m_stack);
    m_pdfView->setDocument(m_pdfDocument);
    m_pdfView->setPageMode(QPdfView::PageMode::MultiPage);
    m_pdfView->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    m_pdfView->setFocusPolicy(Qt::NoFocus);
    m_stack->addWidget(m_pdfView);
#endif

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_stack);
    resize(800, 600);
    if (!m_urls.isEmpty()) {
        showItem(0);
    }
}

PreviewWindow::~PreviewWindow() = default;

bool PreviewWindow::showsPdf()
{
#ifdef VANTROPE_HAVE_QT_PDF
    return true;
#else
    return false;
#endif
}

QString PreviewWindow::shownText() const
{
    switch (m_kind) {
    case Kind::text:
        return m_text->toPlainText();
    case Kind::summary:
        return m_summaryText->text();
    default:
        return QString();
    }
}

PreviewWindow::Kind PreviewWindow::kindOf(const QString& path) const
{
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable()) {
        return Kind::summary;
    }
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForFile(info);
    if (type.name().startsWith(QStringLiteral("image/"))) {
        QImageReader reader(path);
        if (reader.canRead()) {
            return reader.supportsAnimation() && reader.imageCount() != 1 ? Kind::animation : Kind::image;
        }
        return Kind::summary;
    }
    if (type.name() == QStringLiteral("application/pdf")) {
        return showsPdf() ? Kind::pdf : Kind::summary;
    }
    if (type.inherits(QStringLiteral("text/plain"))) {
        return Kind::text;
    }
    return Kind::summary;
}

void PreviewWindow::showItem(int index)
{
    if (index < 0 || index >= m_urls.size()) {
        return;
    }
    m_index = index;
    if (m_movie) {
        m_movie->stop();
        m_picture->setMovie(nullptr);
        delete m_movie;
        m_movie = nullptr;
    }
    const QString path = m_urls[index].toLocalFile();
    m_kind = m_urls[index].isLocalFile() ? kindOf(path) : Kind::summary;
    switch (m_kind) {
    case Kind::image:
        showImage(path);
        break;
    case Kind::animation:
        showAnimation(path);
        break;
    case Kind::text:
        showText(path);
        break;
    case Kind::pdf:
        if (!showPdf(path)) {
            m_kind = Kind::summary;
            showSummary(path);
        }
        break;
    case Kind::summary:
        showSummary(path);
        break;
    }
    QString title = QFileInfo(path).fileName();
    if (m_urls.size() > 1) {
        title += QStringLiteral(" (%1/%2)").arg(index + 1).arg(m_urls.size());
    }
    setWindowTitle(title);
}

void PreviewWindow::showImage(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    // A large picture is decoded at the size it is shown, not at its own.
    const QSize size = reader.size();
    if (size.width() > pictureBounds.width() || size.height() > pictureBounds.height()) {
        reader.setScaledSize(size.scaled(pictureBounds, Qt::KeepAspectRatio));
    }
    const QImage image = reader.read();
    if (image.isNull()) {
        m_kind = Kind::summary;
        showSummary(path);
        return;
    }
    m_picture->setPixmap(QPixmap::fromImage(image));
    m_stack->setCurrentWidget(m_picture);
}

void PreviewWindow::showAnimation(const QString& path)
{
    m_movie = new QMovie(path, QByteArray(), this);
    if (!m_movie->isValid()) {
        delete m_movie;
        m_movie = nullptr;
        m_kind = Kind::image;
        showImage(path);
        return;
    }
    m_picture->setMovie(m_movie);
    m_movie->start();
    m_stack->setCurrentWidget(m_picture);
}

void PreviewWindow::showText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_kind = Kind::summary;
        showSummary(path);
        return;
    }
    const QByteArray head = file.read(textLimit);
    QString text = QString::fromUtf8(head);
    if (file.size() > textLimit) {
        text += QLatin1Char('\n') + Localized("preview.text.truncated", "…");
    }
    m_text->setPlainText(text);
    m_stack->setCurrentWidget(m_text);
}

bool PreviewWindow::showPdf(const QString& path)
{
#ifdef VANTROPE_HAVE_QT_PDF
    if (m_pdfDocument->load(path) != QPdfDocument::Error::None) {
        return false;
    }
    m_stack->setCurrentWidget(m_pdfView);
    return true;
#else
    Q_UNUSED(path);
    return false;
#endif
}

void PreviewWindow::showSummary(const QString& path)
{
    static const QMimeDatabase database;
    const QFileInfo info(path);
    const QMimeType type = info.isDir() ? database.mimeTypeForName(QStringLiteral("inode/directory"))
                                        : database.mimeTypeForFile(info);
    QIcon icon = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
    if (icon.isNull()) {
        icon = QIcon::fromTheme(QStringLiteral("text-x-generic"));
    }
    m_summaryIcon->setPixmap(icon.pixmap(128, 128));

    QStringList lines;
    lines << info.fileName() << type.comment();
    if (!info.exists()) {
        lines << Localized("preview.summary.missing", "This file is no longer there.");
    } else {
        if (info.isFile()) {
            lines << QLocale().formattedDataSize(info.size());
        }
        const QString created = formattedDate(info.birthTime());
        if (!created.isEmpty()) {
            lines << Localized("preview.summary.created", "Created %1").arg(created);
        }
        lines << Localized("preview.summary.modified", "Modified %1").arg(formattedDate(info.lastModified()));
    }
    m_summaryText->setText(lines.join(QLatin1Char('\n')));
    m_stack->setCurrentWidget(m_summary);
}

void PreviewWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        showItem(m_index - 1);
        return;
    case Qt::Key_Right:
        showItem(m_index + 1);
        return;
    case Qt::Key_Space:
    case Qt::Key_Escape:
        close();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace Vantrope
