// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#pragma once

#include "Libraries/FileOperations/OperationsController.h"
#include "OperationsProvider.h"

#include <memory>

namespace Vantrope {

class Preferences;

// The operations of one shelf as its menu and search offer them, over the operations library's
// controller: the built-in types, the user's own operations and the scripts. Copy to and move to, when
// the preference names them for the main menu, bring a row for each recent destination.
class FileOperationsProvider final : public OperationsProvider {
public:
    // Menu identifiers of a recent destination: the type's identifier, this separator, the folder.
    static constexpr QLatin1Char destinationSeparator{'|'};

    FileOperationsProvider(std::unique_ptr<OperationsController> controller, const Preferences& preferences);

    OperationsController& controller() { return *m_controller; }

    void setItems(const QList<QUrl>& urls) override;
    QList<MenuItem> menuItems() const override;
    QList<SearchElement> searchElements() const override;
    bool performMenuItem(const QString& identifier) override;
    bool performSearchElement(const SearchElement& element) override;
    void cancel() override;
    OperationSettings settings(const QString& identifier) const override;
    std::expected<void, QString> performWithValues(const QString& identifier,
                                                   const QVariantMap& values) override;

private:
    std::optional<FileOperationType> typeFor(const QString& identifier) const;

    std::unique_ptr<OperationsController> m_controller;
    const Preferences& m_preferences;
};

} // namespace Vantrope
