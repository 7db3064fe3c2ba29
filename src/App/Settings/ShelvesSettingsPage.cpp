// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ShelvesSettingsPage.h"

#include "Libraries/Core/Localized.h"
#include "PreferenceBinding.h"
#include "Preferences/Preferences.h"
#include "Preferences/SettingsItem.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>

namespace Vantrope {

namespace {

using Location = SettingsItem::ShelfLocation;
using DoubleClick = SettingsItem::DoubleClick;
using EdgeAction = SettingsItem::DoubleClickEdgeAction;

} // namespace

ShelvesSettingsPage::ShelvesSettingsPage(Preferences& preferences, QWidget* parent)
    : SettingsPage(parent)
{
    QFormLayout* opening = addSection(Localized("settings.shelf.section.opening", "New shelves"));
    auto* location = new QComboBox(this);
    location->setObjectName(QStringLiteral("defaultShelfLocation"));
    location->addItem(Localized("settings.shelf.location.top-right", "Top right of the screen"),
                      SettingsItem::storedValue(Location::topRight));
    location->addItem(Localized("settings.shelf.location.top-left", "Top left of the screen"),
                      SettingsItem::storedValue(Location::topLeft));
    location->addItem(Localized("settings.shelf.location.bottom-right", "Bottom right of the screen"),
                      SettingsItem::storedValue(Location::bottomRight));
    location->addItem(Localized("settings.shelf.location.bottom-left", "Bottom left of the screen"),
                      SettingsItem::storedValue(Location::bottomLeft));
    location->addItem(Localized("settings.shelf.location.center", "Centre of the screen"),
                      SettingsItem::storedValue(Location::center));
    location->addItem(Localized("settings.shelf.location.cursor", "Next to the pointer"),
                      SettingsItem::storedValue(Location::cursor));
    PreferenceBinding::bind(location, preferences, PreferenceKeys::defaultShelfLocation);
    opening->addRow(PreferenceBinding::label(PreferenceKey::defaultShelfLocation), location);
    PreferenceBinding::bind(addCheckBox(opening, QStringLiteral("keepShelfInSpace"),
                                        PreferenceBinding::label(PreferenceKey::keepShelfInSpace)),
                            preferences, PreferenceKeys::keepShelfInSpace);
    PreferenceBinding::bind(addCheckBox(opening, QStringLiteral("shelfLabelsEnabled"),
                                        PreferenceBinding::label(PreferenceKey::shelfLabelsEnabled)),
                            preferences, PreferenceKeys::shelfLabelsEnabled);

    QFormLayout* items = addSection(Localized("settings.shelf.section.items", "Items"));
    PreferenceBinding::bind(addCheckBox(items, QStringLiteral("copiesContentOnDrag"),
                                        PreferenceBinding::label(PreferenceKey::copiesContentOnDrag)),
                            preferences, PreferenceKeys::copiesContentOnDrag);
    addNote(items, Localized("settings.shelf.copies-content-on-drag.note",
                             "Otherwise files dragged into a folder on the same disk are moved there."));
    PreferenceBinding::bind(addCheckBox(items, QStringLiteral("alwaysCloseShelf"),
                                        PreferenceBinding::label(PreferenceKey::alwaysCloseShelf)),
                            preferences, PreferenceKeys::alwaysCloseShelf);
    PreferenceBinding::bind(
        addCheckBox(items, QStringLiteral("draggableTextForcesPlainText"),
                    PreferenceBinding::label(PreferenceKey::draggableTextForcesPlainText)),
        preferences, PreferenceKeys::draggableTextForcesPlainText);
    auto* doubleClick = new QComboBox(this);
    doubleClick->setObjectName(QStringLiteral("doubleClickAction"));
    doubleClick->addItem(Localized("settings.shelf.double-click.show", "Shows it in the file manager"),
                         SettingsItem::storedValue(DoubleClick::showInFileManager));
    doubleClick->addItem(Localized("settings.shelf.double-click.open", "Opens it"),
                         SettingsItem::storedValue(DoubleClick::open));
    doubleClick->addItem(Localized("settings.shelf.double-click.preview", "Shows a preview"),
                         SettingsItem::storedValue(DoubleClick::preview));
    doubleClick->addItem(Localized("settings.shelf.double-click.none", "Does nothing"),
                         SettingsItem::storedValue(DoubleClick::none));
    PreferenceBinding::bind(doubleClick, preferences, PreferenceKeys::doubleClickAction);
    items->addRow(PreferenceBinding::label(PreferenceKey::doubleClickAction), doubleClick);

    QFormLayout* placement = addSection(Localized("settings.shelf.section.placement", "Moving shelves"));
    PreferenceBinding::bind(
        addCheckBox(placement, QStringLiteral("automaticWindowSnappingEnabled"),
                    PreferenceBinding::label(PreferenceKey::automaticWindowSnappingEnabled)),
        preferences, PreferenceKeys::automaticWindowSnappingEnabled);
    PreferenceBinding::bind(addCheckBox(placement, QStringLiteral("shelfRetractionEnabled"),
                                        PreferenceBinding::label(PreferenceKey::shelfRetractionEnabled)),
                            preferences, PreferenceKeys::shelfRetractionEnabled);
    auto* edge = new QComboBox(this);
    edge->setObjectName(QStringLiteral("doubleClickEdgeAction"));
    edge->addItem(Localized("settings.shelf.double-click-edge.dock", "Docks it at the screen edge"),
                  SettingsItem::storedValue(EdgeAction::dock));
    edge->addItem(Localized("settings.shelf.double-click-edge.retract", "Slides it aside"),
                  SettingsItem::storedValue(EdgeAction::retract));
    edge->addItem(Localized("settings.shelf.double-click-edge.none", "Does nothing"),
                  SettingsItem::storedValue(EdgeAction::none));
    PreferenceBinding::bind(edge, preferences, PreferenceKeys::doubleClickEdgeAction);
    placement->addRow(PreferenceBinding::label(PreferenceKey::doubleClickEdgeAction), edge);
    finish();
}

} // namespace Vantrope
