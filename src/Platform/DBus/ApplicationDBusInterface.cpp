// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "ApplicationDBusInterface.h"

#include "Version.h"

namespace Vantrope {

QString ApplicationDBusInterface::serviceName()
{
    return QStringLiteral(VANTROPE_APPLICATION_ID);
}

QString ApplicationDBusInterface::interfaceName()
{
    return QStringLiteral(VANTROPE_APPLICATION_ID);
}

QString ApplicationDBusInterface::objectPath()
{
    return QLatin1Char('/') + serviceName().replace(QLatin1Char('.'), QLatin1Char('/'));
}

QString ApplicationDBusInterface::errorName(const QString& name)
{
    return interfaceName() + QStringLiteral(".Error.") + name;
}

} // namespace Vantrope
