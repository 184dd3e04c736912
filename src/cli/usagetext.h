#pragma once

#include <QString>

/// The help texts of kelvmenu, printed by --help and, for a usage error, on standard error.
namespace UsageText {
QString general();
QString dump();
QString format();
QString check();
QString tree();
QString edit();
} // namespace UsageText
