// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "DragSessionSettingsPopover.h"

#include "Domains/DragSession/DragSessionLabelColor.h"
#include "Libraries/Core/Localized.h"

#include <algorithm>
#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QVBoxLayout>

#ifdef WITH_X11
#include "Platform/X11/X11WindowHints.h"
#endif

namespace Vantrope {

namespace {

constexpr int margin = 14;
constexpr double radius = 10.0;

bool darkPalette(const QWidget& widget)
{
    return widget.palette().color(QPalette::Window).lightness() < 128;
}

QLabel* heading(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace

DragSessionColorSwatch::DragSessionColorSwatch(DragSessionLabelColor::Identifier color, QWidget* parent)
    : QAbstractButton(parent)
    , m_color(color)
{
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(DragSessionLabelColor::title(color));
    setAccessibleName(DragSessionLabelColor::title(color));
}

void DragSessionColorSwatch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = darkPalette(*this);
    const QRectF area = QRectF(rect()).adjusted(2, 2, -2, -2);
    const QColor fill = DragSessionLabelColor(m_color).color().color(dark);
    painter.setPen(QPen(dark ? QColor(255, 255, 255, 40) : QColor(0, 0, 0, 40), 1));
    painter.setBrush(fill);
    painter.drawEllipse(area.adjusted(0.5, 0.5, -0.5, -0.5));
    if (isChecked()) {
        // A ring in the window's own colour inside the swatch marks the choice on any fill.
        painter.setPen(QPen(palette().color(QPalette::Window), 2.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(area.adjusted(4, 4, -4, -4));
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75));
    }
}

DragSessionSettingsPopover::DragSessionSettingsPopover(const DragSessionLabel& label, QWidget* parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , m_label(label)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(QStringLiteral("shelf-settings"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin + arrowHeight, margin, margin);
    layout->setSpacing(6);

    layout->addWidget(heading(Localized("shelf-settings.name", "Name"), this));
    m_name = new QLineEdit(this);
    m_name->setPlaceholderText(Localized("shelf-settings.name.placeholder", "Untitled shelf"));
    m_name->setClearButtonEnabled(true);
    m_name->setText(label.name.value_or(QString()));
    layout->addWidget(m_name);
    connect(m_name, &QLineEdit::textEdited, this, &DragSessionSettingsPopover::nameEdited);
    connect(m_name, &QLineEdit::returnPressed, this, &QWidget::close);

    layout->addSpacing(4);
    layout->addWidget(heading(Localized("shelf-settings.color", "Colour"), this));
    auto* swatches = new QHBoxLayout;
    swatches->setSpacing(2);
    for (const auto color : DragSessionLabelColor::allIdentifiers()) {
        auto* swatch = new DragSessionColorSwatch(color, this);
        swatch->setChecked(color == label.color.id());
        connect(swatch, &QAbstractButton::clicked, this, [this, color] {
            for (DragSessionColorSwatch* other : std::as_const(m_swatches)) {
                other->setChecked(other->color() == color);
            }
            DragSessionLabel changed = m_label;
            changed.color = DragSessionLabelColor(color);
            // Picked by hand: automatic recolouring leaves this shelf alone from now on.
            changed.userDefined = true;
            change(changed);
        });
        m_swatches.append(swatch);
        swatches->addWidget(swatch);
    }
    swatches->addStretch();
    layout->addLayout(swatches);

    layout->addSpacing(4);
    m_alwaysShowColor =
        new QCheckBox(Localized("shelf-settings.always-show-color", "Always show the colour"), this);
    m_alwaysShowColor->setChecked(label.colorVisibility == DragSessionLabel::ColorVisibility::always);
    connect(m_alwaysShowColor, &QCheckBox::toggled, this, [this](bool always) {
        DragSessionLabel changed = m_label;
        changed.colorVisibility = always ? DragSessionLabel::ColorVisibility::always
                                         : DragSessionLabel::ColorVisibility::onMouseOver;
        change(changed);
    });
    layout->addWidget(m_alwaysShowColor);

    m_pinned =
        new QCheckBox(Localized("shelf-settings.pinned", "Pinned: keep it among the recent shelves"), this);
    m_pinned->setChecked(label.pinned);
    connect(m_pinned, &QCheckBox::toggled, this, [this](bool pinned) {
        DragSessionLabel changed = m_label;
        changed.pinned = pinned;
        change(changed);
    });
    layout->addWidget(m_pinned);

    m_keepInDesktop =
        new QCheckBox(Localized("shelf-settings.keep-in-desktop", "Keep in this desktop"), this);
    m_keepInDesktop->setChecked(label.keepInOwnSpace);
    connect(m_keepInDesktop, &QCheckBox::toggled, this, [this](bool keep) {
        DragSessionLabel changed = m_label;
        changed.keepInOwnSpace = keep;
        change(changed);
    });
    layout->addWidget(m_keepInDesktop);

    m_name->setFocus(Qt::PopupFocusReason);
    adjustSize();
    m_arrowX = width() / 2;
}

DragSessionColorSwatch* DragSessionSettingsPopover::swatch(DragSessionLabelColor::Identifier color) const
{
    for (DragSessionColorSwatch* swatch : m_swatches) {
        if (swatch->color() == color) {
            return swatch;
        }
    }
    return nullptr;
}

void DragSessionSettingsPopover::change(const DragSessionLabel& label)
{
    m_label = label;
    Q_EMIT labelChanged(m_label);
}

void DragSessionSettingsPopover::nameEdited(const QString& text)
{
    const std::optional<QString> name = DragSessionLabel::cleanName(text);
    const QString kept = name.value_or(QString());
    // What was pasted in several lines, or at length, shows as it is kept. Spaces being typed at the
    // end stay in the field, or the next word would run into the last.
    if (text.size() > DragSessionLabel::maximumNameLength || kept != text.trimmed() ||
        text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'))) {
        const QSignalBlocker blocker(m_name);
        m_name->setText(kept);
    }
    DragSessionLabel changed = m_label;
    changed.name = name;
    change(changed);
}

void DragSessionSettingsPopover::anchorAt(const QPoint& anchor)
{
    adjustSize();
    QPoint topLeft(anchor.x() - width() / 2, anchor.y());
    QScreen* screen = QGuiApplication::screenAt(anchor);
    if (!screen) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen) {
        const QRect available = screen->availableGeometry();
        topLeft.setX(std::clamp(topLeft.x(), available.left(),
                                std::max(available.left(), available.right() - width())));
        topLeft.setY(std::clamp(topLeft.y(), available.top(),
                                std::max(available.top(), available.bottom() - height())));
    }
    m_arrowX =
        std::clamp(anchor.x() - topLeft.x(), int(radius) + arrowHeight, width() - int(radius) - arrowHeight);
    move(topLeft);
    applyShape();
    update();
}

bool DragSessionSettingsPopover::isDark() const
{
    return darkPalette(*this);
}

QPainterPath DragSessionSettingsPopover::outline() const
{
    const QRectF card = QRectF(rect()).adjusted(0.5, arrowHeight + 0.5, -0.5, -0.5);
    QPainterPath path;
    path.addRoundedRect(card, radius, radius);
    QPainterPath arrow;
    arrow.moveTo(m_arrowX - arrowHeight, card.top() + 1);
    arrow.lineTo(m_arrowX, 0.5);
    arrow.lineTo(m_arrowX + arrowHeight, card.top() + 1);
    arrow.closeSubpath();
    return path.united(arrow);
}

void DragSessionSettingsPopover::applyShape()
{
#ifdef WITH_X11
    const bool composited =
        QGuiApplication::platformName() != QStringLiteral("xcb") || X11WindowHints::hasCompositingManager();
#else
    const bool composited = true;
#endif
    // Without a compositing manager nothing shows through: the window is cut to the outline instead.
    if (composited) {
        clearMask();
    } else {
        setMask(QRegion(outline().toFillPolygon().toPolygon()));
    }
}

void DragSessionSettingsPopover::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    applyShape();
}

void DragSessionSettingsPopover::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = isDark();
    painter.setPen(QPen(dark ? QColor(255, 255, 255, 50) : QColor(0, 0, 0, 45), 1));
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawPath(outline());
}

void DragSessionSettingsPopover::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

void DragSessionSettingsPopover::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    // A popup hides when the user clicks elsewhere; it is done then, as after Escape.
    if (!m_closed) {
        m_closed = true;
        Q_EMIT closed();
        close();
    }
}

} // namespace Vantrope
