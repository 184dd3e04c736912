#include "applicationicon.h"

QIcon applicationIcon()
{
    QIcon icon;
    for (const int size : { 16, 24, 32, 48, 64, 128, 256 }) {
        icon.addFile(QStringLiteral(":/icons/kelveditor-%1.png").arg(size), QSize(size, size));
    }
    return icon;
}
