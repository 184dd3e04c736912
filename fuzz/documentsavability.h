#pragma once

struct MenuDocument;

/// Whether the menu file format can hold everything `document` holds, so that writing it and
/// reading the bytes back must give the same menu. The fuzz targets compare the round trip only
/// then: a document the format cannot hold is one the editor must refuse to save, not one whose
/// save may differ.
bool documentIsSavable(const MenuDocument& document);
