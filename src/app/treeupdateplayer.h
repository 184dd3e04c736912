#pragma once

class EditorWindow;
class TreeUpdate;
struct TreeStep;

/// Carries out the steps of a TreeUpdate, in order, on an editor window: the shape steps on its tree
/// (the nodes of a copied branch in one run), the busy notice while long work lasts, and the rest
/// (colouring, clicks, the status bar, the link-target choice, messages) through the window. After
/// the steps the find bar and the path of the selected node follow the menu.
class TreeUpdatePlayer final
{
public:
    explicit TreeUpdatePlayer(EditorWindow& editor);

    /// Throws RunTimeError on failure; the busy notice is taken away then too.
    void play(const TreeUpdate& update);

private:
    void playStep(const TreeStep& step);

    EditorWindow& m_editor;
};
