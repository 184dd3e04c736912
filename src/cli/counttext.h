#pragma once

#include <QString>

/// A count with its noun, singular for exactly one ("1 item", "0 items", "4 items").
QString countText(qsizetype count, const QString& singular, const QString& plural);
