#pragma once

#include <QIcon>

/// The editor's own icon (a context menu opening a sub-menu), in every size a title bar, a task bar
/// or a window switcher asks for. Built from bitmaps so that no SVG support is needed at run time.
QIcon applicationIcon();
