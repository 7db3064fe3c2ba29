// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "WatchedFolderRuleRow.h"

#include "Domains/DirectoryObserver/SizeItemMatcherInput.h"
#include "Libraries/Core/Localized.h"

#include <algorithm>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QToolButton>

namespace Vantrope {

namespace {

using Matcher = DirectoryObserverItemMatcher;
using Property = Matcher::Property;
using StringComparison = Matcher::StringMatching::Comparison;
using SizeComparison = Matcher::SizeMatching::Comparison;
using KindComparison = Matcher::KindMatching::Comparison;
using Kind = Matcher::KindMatching::Kind;
using Unit = SizeItemMatcherInput::Unit;

enum ValuePage { textPage, sizePage, kindPage };

QString kindTitle(Kind kind)
{
    switch (kind) {
    case Kind::application:
        return Localized("settings.folders.kind.application", "Program");
    case Kind::archive:
        return Localized("settings.folders.kind.archive", "Archive");
    case Kind::document:
        return Localized("settings.folders.kind.document", "Document");
    case Kind::folder:
        return Localized("settings.folders.kind.folder", "Folder");
    case Kind::image:
        return Localized("settings.folders.kind.image", "Image");
    case Kind::video:
        return Localized("settings.folders.kind.video", "Video");
    case Kind::audio:
        return Localized("settings.folders.kind.audio", "Audio");
    case Kind::pdf:
        return Localized("settings.folders.kind.pdf", "PDF");
    case Kind::presentation:
        return Localized("settings.folders.kind.presentation", "Presentation");
    case Kind::text:
        return Localized("settings.folders.kind.text", "Text");
    }
    return {};
}

} // namespace

WatchedFolderRuleRow::WatchedFolderRuleRow(QWidget* parent)
    : QWidget(parent)
    , m_property(new QComboBox(this))
    , m_comparison(new QComboBox(this))
    , m_value(new QStackedWidget(this))
    , m_text(new QLineEdit(this))
    , m_size(new QLineEdit(this))
    , m_unit(new QComboBox(this))
    , m_kind(new QComboBox(this))
    , m_remove(new QToolButton(this))
{
    m_property->setObjectName(QStringLiteral("property"));
    m_comparison->setObjectName(QStringLiteral("comparison"));
    m_text->setObjectName(QStringLiteral("text"));
    m_size->setObjectName(QStringLiteral("size"));
    m_unit->setObjectName(QStringLiteral("unit"));
    m_kind->setObjectName(QStringLiteral("kind"));
    m_remove->setObjectName(QStringLiteral("removeRule"));

    m_property->addItem(Localized("settings.folders.rule.name", "Name"), int(Property::fileName));
    m_property->addItem(Localized("settings.folders.rule.extension", "Extension"),
                        int(Property::fileExtension));
    m_property->addItem(Localized("settings.folders.rule.type", "Type"), int(Property::fileType));
    m_property->addItem(Localized("settings.folders.rule.size", "Size"), int(Property::fileSize));
    m_property->addItem(Localized("settings.folders.rule.kind", "Kind"), int(Property::kind));

    m_text->setPlaceholderText(Localized("settings.folders.rule.text.placeholder", "Text"));
    m_size->setPlaceholderText(Localized("settings.folders.rule.size.placeholder", "Size"));
    m_unit->addItem(Localized("settings.folders.rule.unit.kb", "KB"), int(Unit::kiloBytes));
    m_unit->addItem(Localized("settings.folders.rule.unit.mb", "MB"), int(Unit::megaBytes));
    m_unit->addItem(Localized("settings.folders.rule.unit.gb", "GB"), int(Unit::gigaBytes));
    for (int kind = int(Kind::application); kind <= int(Kind::text); ++kind) {
        m_kind->addItem(kindTitle(Kind(kind)), kind);
    }

    auto* sizeEditor = new QWidget(this);
    auto* sizeLayout = new QHBoxLayout(sizeEditor);
    sizeLayout->setContentsMargins(0, 0, 0, 0);
    sizeLayout->addWidget(m_size, 1);
    sizeLayout->addWidget(m_unit);
    m_value->insertWidget(textPage, m_text);
    m_value->insertWidget(sizePage, sizeEditor);
    m_value->insertWidget(kindPage, m_kind);

    m_remove->setIcon(QIcon::fromTheme(QStringLiteral("list-remove")));
    m_remove->setText(QStringLiteral("−"));
    m_remove->setToolTip(Localized("settings.folders.rule.remove", "Remove this rule"));
    m_remove->setAccessibleName(m_remove->toolTip());

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_property);
    layout->addWidget(m_comparison);
    layout->addWidget(m_value, 1);
    layout->addWidget(m_remove);

    showComparisons(Property::fileName);
    connect(m_property, &QComboBox::activated, this, [this] {
        showComparisons(Property(m_property->currentData().toInt()));
        Q_EMIT edited();
    });
    connect(m_comparison, &QComboBox::activated, this, &WatchedFolderRuleRow::edited);
    connect(m_unit, &QComboBox::activated, this, &WatchedFolderRuleRow::edited);
    connect(m_kind, &QComboBox::activated, this, &WatchedFolderRuleRow::edited);
    connect(m_text, &QLineEdit::textEdited, this, &WatchedFolderRuleRow::edited);
    connect(m_size, &QLineEdit::textEdited, this, &WatchedFolderRuleRow::edited);
    connect(m_remove, &QToolButton::clicked, this, &WatchedFolderRuleRow::removeRequested);
}

void WatchedFolderRuleRow::showComparisons(Property property)
{
    const QSignalBlocker blocker(m_comparison);
    m_comparison->clear();
    switch (property) {
    case Property::fileName:
    case Property::fileExtension:
    case Property::fileType:
        m_comparison->addItem(Localized("settings.folders.rule.contains", "contains"),
                              int(StringComparison::contains));
        m_comparison->addItem(Localized("settings.folders.rule.does-not-contain", "does not contain"),
                              int(StringComparison::doesNotContain));
        m_comparison->addItem(Localized("settings.folders.rule.starts-with", "starts with"),
                              int(StringComparison::startsWith));
        m_comparison->addItem(Localized("settings.folders.rule.ends-with", "ends with"),
                              int(StringComparison::endsWith));
        m_comparison->addItem(Localized("settings.folders.rule.is", "is"), int(StringComparison::equals));
        m_comparison->addItem(Localized("settings.folders.rule.is-not", "is not"),
                              int(StringComparison::doesNotEqual));
        m_value->setCurrentIndex(textPage);
        break;
    case Property::fileSize:
        m_comparison->addItem(Localized("settings.folders.rule.greater-than", "is larger than"),
                              int(SizeComparison::greaterThan));
        m_comparison->addItem(Localized("settings.folders.rule.less-than", "is smaller than"),
                              int(SizeComparison::lessThan));
        m_comparison->addItem(Localized("settings.folders.rule.equal-to", "is exactly"),
                              int(SizeComparison::equalTo));
        m_value->setCurrentIndex(sizePage);
        break;
    case Property::kind:
        m_comparison->addItem(Localized("settings.folders.rule.is", "is"), int(KindComparison::equals));
        m_comparison->addItem(Localized("settings.folders.rule.is-not", "is not"),
                              int(KindComparison::doesNotEqual));
        m_value->setCurrentIndex(kindPage);
        break;
    }
}

void WatchedFolderRuleRow::setMatcher(const DirectoryObserverItemMatcher& matcher)
{
    const QSignalBlocker blocker(this);
    m_property->setCurrentIndex(m_property->findData(int(matcher.property())));
    showComparisons(matcher.property());
    if (const auto* string = matcher.stringMatching()) {
        m_comparison->setCurrentIndex(m_comparison->findData(int(string->comparison)));
        m_text->setText(string->pattern);
    } else if (const auto* size = matcher.sizeMatching()) {
        m_comparison->setCurrentIndex(m_comparison->findData(int(size->comparison)));
        // The largest unit that shows the size as a whole number.
        Unit unit = Unit::kiloBytes;
        for (const Unit candidate : {Unit::gigaBytes, Unit::megaBytes}) {
            if (size->bytes != 0 && size->bytes % SizeItemMatcherInput::unitSize(candidate) == 0) {
                unit = candidate;
                break;
            }
        }
        m_unit->setCurrentIndex(m_unit->findData(int(unit)));
        m_size->setText(QString::number(size->bytes / SizeItemMatcherInput::unitSize(unit)));
    } else if (const auto* kind = matcher.kindMatching()) {
        m_comparison->setCurrentIndex(m_comparison->findData(int(kind->comparison)));
        m_kind->setCurrentIndex(m_kind->findData(int(kind->kind)));
    }
}

std::expected<DirectoryObserverItemMatcher, QString> WatchedFolderRuleRow::matcher() const
{
    const auto property = Property(m_property->currentData().toInt());
    const int comparison = m_comparison->currentData().toInt();
    switch (property) {
    case Property::fileName:
        return Matcher::fileName({StringComparison(comparison), m_text->text()});
    case Property::fileExtension:
        return Matcher::fileExtension({StringComparison(comparison), m_text->text()});
    case Property::fileType:
        return Matcher::fileType({StringComparison(comparison), m_text->text()});
    case Property::kind:
        return Matcher::kind({KindComparison(comparison), Kind(m_kind->currentData().toInt())});
    case Property::fileSize:
        break;
    }
    const QString text = m_size->text().trimmed();
    const bool digitsOnly = !text.isEmpty() && std::all_of(text.cbegin(), text.cend(),
                                                           [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!digitsOnly) {
        return std::unexpected(
            text.isEmpty()
                ? Localized("settings.folders.rule.size.empty", "Type a size for the size rule, such as 12.")
                : Localized(
                      "settings.folders.rule.size.invalid",
                      "\"%1\" is not a size: type a whole number, such as 12, and pick the unit beside it.")
                      .arg(text));
    }
    bool fits = false;
    (void)text.toLongLong(&fits);
    const auto bytes = SizeItemMatcherInput::bytes(text, Unit(m_unit->currentData().toInt()));
    if (!fits || !bytes) {
        return std::unexpected(
            Localized("settings.folders.rule.size.too-large", "%1 %2 is more than any file can hold.")
                .arg(text, m_unit->currentText()));
    }
    return Matcher::fileSize({SizeComparison(comparison), *bytes});
}

} // namespace Vantrope
