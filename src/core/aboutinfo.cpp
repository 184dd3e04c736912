#include "aboutinfo.h"

// The version comes from the build's project version, the maker's details from the build's
// settings (KELV_AUTHOR, KELV_CONTACT_EMAIL, KELV_FORUM_URL, KELV_WEB_URL) and the licence from the
// project's own definition, so that each is set in one place.
#if !defined(KELV_VERSION_MAJOR) || !defined(KELV_VERSION_MINOR) || !defined(KELV_VERSION_PATCH)
#error "The program version must be given by the build (KELV_VERSION_MAJOR, _MINOR, _PATCH)."
#endif
#if !defined(KELV_AUTHOR) || !defined(KELV_CONTACT_EMAIL) || !defined(KELV_FORUM_URL) || !defined(KELV_WEB_URL)
#error "The maker's details must be given by the build (KELV_AUTHOR, KELV_CONTACT_EMAIL, KELV_FORUM_URL, KELV_WEB_URL)."
#endif
#if !defined(KELV_LICENSE_NAME) || !defined(KELV_COPYRIGHT_YEAR)
#error "The licence must be given by the build (KELV_LICENSE_NAME, KELV_COPYRIGHT_YEAR)."
#endif

namespace {

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

} // namespace

QString aboutText()
{
    return QStringLiteral("KELV Menu Editor v") + programVersion() + lineEnd() + QString::fromUtf8(KELV_AUTHOR)
        + lineEnd() + QString::fromUtf8(KELV_WEB_URL) + lineEnd() + QStringLiteral("Distributed under the ")
        + licenceName();
}

QString contactLines()
{
    const QString indent = QStringLiteral("    ");
    return indent + QString::fromUtf8(KELV_CONTACT_EMAIL) + lineEnd() + indent + QString::fromUtf8(KELV_FORUM_URL);
}

QString programVersion()
{
    return QStringLiteral("%1.%2.%3").arg(KELV_VERSION_MAJOR).arg(KELV_VERSION_MINOR).arg(KELV_VERSION_PATCH);
}

QString licenceName()
{
    return QString::fromUtf8(KELV_LICENSE_NAME);
}

QString versionText(const QString& programName)
{
    return programName + QStringLiteral(" (KELV Menu Editor) ") + programVersion() + QLatin1Char('\n')
        + QStringLiteral("Copyright (C) %1 ").arg(KELV_COPYRIGHT_YEAR) + QString::fromUtf8(KELV_AUTHOR)
        + QStringLiteral(".\n") + QStringLiteral("Distributed under the ") + licenceName()
        + QStringLiteral("; see the LICENSE file.\n") + QLatin1Char('\n') + QStringLiteral("Written by ")
        + QString::fromUtf8(KELV_AUTHOR) + QStringLiteral(".\n");
}
