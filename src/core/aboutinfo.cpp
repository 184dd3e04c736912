#include "aboutinfo.h"

// The version comes from the build's project version and the maker's details from the build's
// settings (KELV_AUTHOR, KELV_CONTACT_EMAIL, KELV_FORUM_URL, KELV_WEB_URL), so they are set in one
// place.
#if !defined(KELV_VERSION_MAJOR) || !defined(KELV_VERSION_MINOR) || !defined(KELV_VERSION_PATCH)
#error "The program version must be given by the build (KELV_VERSION_MAJOR, _MINOR, _PATCH)."
#endif
#if !defined(KELV_AUTHOR) || !defined(KELV_CONTACT_EMAIL) || !defined(KELV_FORUM_URL) || !defined(KELV_WEB_URL)
#error "The maker's details must be given by the build (KELV_AUTHOR, KELV_CONTACT_EMAIL, KELV_FORUM_URL, KELV_WEB_URL)."
#endif

namespace {

QString lineEnd()
{
    return QStringLiteral("\r\n");
}

} // namespace

QString aboutText()
{
    const QString version
        = QStringLiteral("%1.%2.%3").arg(KELV_VERSION_MAJOR).arg(KELV_VERSION_MINOR).arg(KELV_VERSION_PATCH);
    return QStringLiteral("KELV Menu Editor v") + version + lineEnd() + QString::fromUtf8(KELV_AUTHOR) + lineEnd()
        + QString::fromUtf8(KELV_WEB_URL);
}

QString contactLines()
{
    const QString indent = QStringLiteral("    ");
    return indent + QString::fromUtf8(KELV_CONTACT_EMAIL) + lineEnd() + indent + QString::fromUtf8(KELV_FORUM_URL);
}
