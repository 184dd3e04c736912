// Opening a 32,767-item menu until its tree is painted, and the memory that takes, in the editor and
// in two bare Qt programs that show the same tree fully expanded (the anchors): a QTreeWidget, and a
// QTreeView over a small custom model. Each opening runs in a process of its own, in shuffled order,
// so that every one starts from the same state and its peak memory is its own.
// Run by hand on a release build (QT_QPA_PLATFORM=offscreen works): kelvbench_view [runs]. To look at
// one opening under a profiler: kelvbench_view --write FOLDER writes the menus, and
// kelvbench_view --child editor|treeview|treewidget FOLDER/deep.ini opens one.

#include "menugenerator.h"
#include "silentprompts.h"

#include "app/editorwindow.h"
#include "app/itemtree.h"
#include "app/mainwindow.h"
#include "core/optionsstore.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "model/menudocument.h"
#include "model/runtimeerror.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace {

constexpr int kExpandedLevels = 1000;

/// The children of every item in the order the menu shows them (by siblingOrder), read from the
/// tree numbers of a freshly read menu.
std::vector<std::vector<int>> childrenOf(const MenuDocument& document)
{
    std::vector<std::vector<int>> children(size_t(document.items.size()) + 1); // last: the top level
    for (int i = 0; i < int(document.items.size()); ++i) {
        const int parent = document.items.at(i).parent;
        children[parent < 0 ? size_t(document.items.size()) : size_t(parent)].push_back(i);
    }
    for (std::vector<int>& list : children) {
        std::stable_sort(list.begin(), list.end(), [&document](int left, int right) {
            return document.items.at(left).siblingOrder < document.items.at(right).siblingOrder;
        });
    }
    return children;
}

/// The plain model of the anchor: one node per item, the root above them, captions read from the
/// menu.
class PlainModel final : public QAbstractItemModel
{
public:
    explicit PlainModel(const MenuDocument& document)
        : m_document(document)
    {
        const std::vector<std::vector<int>> children = childrenOf(document);
        m_nodes.resize(size_t(document.items.size()) + 1);
        const int root = int(document.items.size());
        m_nodes[size_t(root)].item = -1;
        std::vector<int> stack { root };
        while (!stack.empty()) {
            const int node = stack.back();
            stack.pop_back();
            m_nodes[size_t(node)].children = children[size_t(node)];
            for (size_t row = 0; row < children[size_t(node)].size(); ++row) {
                Node& child = m_nodes[size_t(children[size_t(node)][row])];
                child.item = children[size_t(node)][row];
                child.parent = node;
                child.row = int(row);
                stack.push_back(child.item);
            }
        }
    }

    int rootNode() const { return int(m_nodes.size()) - 1; }
    const std::vector<int>& childrenOfNode(int node) const { return m_nodes[size_t(node)].children; }
    QModelIndex indexOfNode(int node) const
    {
        return createIndex(node == rootNode() ? 0 : m_nodes[size_t(node)].row, 0, spread(node));
    }

    QModelIndex index(int row, int column, const QModelIndex& parent) const override
    {
        if (!parent.isValid()) {
            return row == 0 && column == 0 ? indexOfNode(rootNode()) : QModelIndex();
        }
        const std::vector<int>& list = m_nodes[size_t(nodeOf(parent))].children;
        return column == 0 && row >= 0 && row < int(list.size()) ? indexOfNode(list[size_t(row)]) : QModelIndex();
    }
    QModelIndex parent(const QModelIndex& child) const override
    {
        const int node = nodeOf(child);
        return child.isValid() && node != rootNode() ? indexOfNode(m_nodes[size_t(node)].parent) : QModelIndex();
    }
    int rowCount(const QModelIndex& parent) const override
    {
        return !parent.isValid() ? 1 : int(m_nodes[size_t(nodeOf(parent))].children.size());
    }
    int columnCount(const QModelIndex&) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role != Qt::DisplayRole) {
            return QVariant();
        }
        const int node = nodeOf(index);
        return node == rootNode() ? QStringLiteral("KELV") : m_document.items.at(node).caption;
    }

private:
    struct Node
    {
        int item = -1;
        int parent = -1;
        int row = 0;
        std::vector<int> children;
    };
    // Sequential ids make item views' index hashes collide; a multiplication spreads them.
    static quintptr spread(int node) { return quintptr(quint64(node + 1) * 0x9E3779B97F4A7C15ULL); }
    int nodeOf(const QModelIndex& index) const { return int(quint64(index.internalId()) * 0xF1DE83E19937733DULL) - 1; }

    const MenuDocument& m_document;
    std::vector<Node> m_nodes;
};

/// Waits until `widget` is painted once; returns false after a minute without.
bool waitForPaint(QWidget* widget)
{
    class PaintWatcher final : public QObject
    {
    public:
        bool painted = false;
        QEventLoop loop;

    protected:
        bool eventFilter(QObject*, QEvent* event) override
        {
            if (event->type() == QEvent::Paint && !painted) {
                painted = true;
                QTimer::singleShot(0, &loop, &QEventLoop::quit);
            }
            return false;
        }
    } watcher;
    widget->installEventFilter(&watcher);
    widget->update();
    QTimer::singleShot(60000, &watcher.loop, &QEventLoop::quit);
    if (!watcher.painted) {
        watcher.loop.exec();
    }
    widget->removeEventFilter(&watcher);
    return watcher.painted;
}

/// Peak and current memory of this process, KiB.
std::pair<long, long> memoryKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    long peak = 0;
    long now = 0;
    if (status.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray& line : lines) {
            if (line.startsWith("VmHWM:")) {
                peak = line.mid(6).trimmed().split(' ').first().toLong();
            } else if (line.startsWith("VmRSS:")) {
                now = line.mid(6).trimmed().split(' ').first().toLong();
            }
        }
    }
    return { peak, now };
}

/// Opens `path` in `program` ("editor", "treeview" or "treewidget") and prints the time until the
/// tree is painted and the memory.
int runChild(const QString& program, const QString& path)
{
    QTemporaryDir folder;
    SilentPrompts prompts;
    OptionsStore store(folder.filePath(QStringLiteral("options.ini")));
    QElapsedTimer timer;
    QWidget* painted = nullptr;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<MenuDocument> document;
    std::unique_ptr<PlainModel> model;
    std::unique_ptr<QTreeView> view;
    std::unique_ptr<QTreeWidget> widget;
    if (program == QLatin1String("editor")) {
        window
            = std::make_unique<MainWindow>(prompts, store, folder.path(), folder.filePath(QStringLiteral("recovery")));
        timer.start();
        const qint16 index = window->openMenu(path, QStringLiteral("menu.ini"));
        if (index == 0) {
            return 2;
        }
        window->show();
        painted = window->editor(index)->tree()->viewport();
    } else {
        timer.start();
        document = std::make_unique<MenuDocument>();
        if (!readMenuFile(path, *document).ok()) {
            return 2;
        }
        if (program == QLatin1String("treeview")) {
            model = std::make_unique<PlainModel>(*document);
            view = std::make_unique<QTreeView>();
            view->setHeaderHidden(true);
            view->setUniformRowHeights(true);
            view->setModel(model.get());
            std::vector<std::pair<int, int>> stack { { model->rootNode(), 0 } };
            while (!stack.empty()) {
                const auto [node, depth] = stack.back();
                stack.pop_back();
                if (!model->childrenOfNode(node).empty() && depth < kExpandedLevels) {
                    view->expand(model->indexOfNode(node));
                }
                for (const int child : model->childrenOfNode(node)) {
                    stack.emplace_back(child, depth + 1);
                }
            }
            view->resize(400, 700);
            view->show();
            painted = view->viewport();
        } else {
            widget = std::make_unique<QTreeWidget>();
            widget->setHeaderHidden(true);
            widget->setUniformRowHeights(true);
            const std::vector<std::vector<int>> children = childrenOf(*document);
            auto* root = new QTreeWidgetItem(QStringList { QStringLiteral("KELV") });
            std::vector<std::tuple<QTreeWidgetItem*, int, int>> stack { { root, int(document->items.size()), 0 } };
            std::vector<QTreeWidgetItem*> parents;
            while (!stack.empty()) {
                const auto [item, node, depth] = stack.back();
                stack.pop_back();
                if (!children[size_t(node)].empty() && depth < kExpandedLevels) {
                    parents.push_back(item);
                }
                for (const int child : children[size_t(node)]) {
                    auto* made = new QTreeWidgetItem(item, QStringList { document->items.at(child).caption });
                    stack.emplace_back(made, child, depth + 1);
                }
            }
            widget->addTopLevelItem(root);
            for (auto it = parents.rbegin(); it != parents.rend(); ++it) {
                (*it)->setExpanded(true);
            }
            widget->resize(400, 700);
            widget->show();
            painted = widget->viewport();
        }
    }
    if (!waitForPaint(painted)) {
        return 3;
    }
    const double elapsed = double(timer.nsecsElapsed()) / 1e6;
    const auto [peak, now] = memoryKiB();
    std::printf("%.3f %ld %ld\n", elapsed, peak, now);
    std::fflush(stdout);
    // The editor's windows go with the process; tearing down 32,767 nodes is not measured.
    std::_Exit(0);
}

struct Sample
{
    std::vector<double> times;
    std::vector<double> peaks;
    std::vector<double> resident;
};

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

QString cell(double value, int decimals = 1)
{
    return QString::number(value, 'f', decimals).rightJustified(11);
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments.at(1) == QLatin1String("--child")) {
        return runChild(arguments.at(2), arguments.at(3));
    }
    const bool writeOnly = arguments.size() == 3 && arguments.at(1) == QLatin1String("--write");
    const int runs = arguments.size() > 1 && !writeOnly ? std::max(1, arguments.at(1).toInt()) : 5;
    QTextStream out(stdout);
    out << "Opening a 32,767-item menu until its tree is painted, each in a process of its own, shuffled;\n"
           "median of "
        << runs
        << " runs. editor: KELVEditor's main window opening the file; treeview: a bare QTreeView\n"
           "over a plain custom model; treewidget: a bare QTreeWidget; both anchors read the file with\n"
           "the editor's reader and expand every submenu, as the editor does. Memory: the process's peak\n"
           "and its resident size once painted, MiB.\n\n";
    out.flush();

    QTemporaryDir temporary;
    const QDir folder(writeOnly ? arguments.at(2) : temporary.path());
    const QStringList programs { QStringLiteral("editor"), QStringLiteral("treeview"), QStringLiteral("treewidget") };
    std::map<std::pair<QString, QString>, Sample> samples;
    QStringList shapes;
    try {
        for (const MenuShape shape : MenuGenerator::allShapes()) {
            MenuGenerator::Options options;
            options.shape = shape;
            const QString name = MenuGenerator::shapeName(shape);
            writeMenuFile(MenuGenerator::generate(options), folder.filePath(name + QStringLiteral(".ini")));
            shapes.append(name);
        }
    } catch (const RunTimeError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    if (writeOnly) {
        return 0;
    }
    std::vector<std::pair<QString, QString>> rounds;
    for (const QString& shape : shapes) {
        for (const QString& program : programs) {
            rounds.emplace_back(shape, program);
        }
    }
    QRandomGenerator random(1124);
    for (int run = 0; run < runs; ++run) {
        std::shuffle(rounds.begin(), rounds.end(), random);
        for (const auto& [shape, program] : rounds) {
            QProcess child;
            child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            child.start(QCoreApplication::applicationFilePath(),
                        { QStringLiteral("--child"), program, folder.filePath(shape + QStringLiteral(".ini")) });
            if (!child.waitForFinished(180000) || child.exitCode() != 0) {
                std::fprintf(stderr, "%s on %s failed\n", qPrintable(program), qPrintable(shape));
                return 1;
            }
            const QList<QByteArray> values = child.readAllStandardOutput().trimmed().split(' ');
            Sample& sample = samples[{ shape, program }];
            sample.times.push_back(values.value(0).toDouble());
            sample.peaks.push_back(values.value(1).toDouble() / 1024);
            sample.resident.push_back(values.value(2).toDouble() / 1024);
        }
    }

    out << "time, ms      shape     editor   treeview treewidget  editor/tv\n";
    for (const QString& shape : shapes) {
        const double editor = median(samples[{ shape, programs.at(0) }].times);
        const double tree = median(samples[{ shape, programs.at(1) }].times);
        out << QString().leftJustified(8) << shape.rightJustified(11) << cell(editor) << cell(tree)
            << cell(median(samples[{ shape, programs.at(2) }].times)) << cell(editor / tree, 2) << "\n";
    }
    out << "\npeak, MiB     shape     editor   treeview treewidget  editor/tv\n";
    for (const QString& shape : shapes) {
        const double editor = median(samples[{ shape, programs.at(0) }].peaks);
        const double tree = median(samples[{ shape, programs.at(1) }].peaks);
        out << QString().leftJustified(8) << shape.rightJustified(11) << cell(editor) << cell(tree)
            << cell(median(samples[{ shape, programs.at(2) }].peaks)) << cell(editor / tree, 2) << "\n";
    }
    out << "\nresident, MiB shape     editor   treeview treewidget  editor/tv\n";
    for (const QString& shape : shapes) {
        const double editor = median(samples[{ shape, programs.at(0) }].resident);
        const double tree = median(samples[{ shape, programs.at(1) }].resident);
        out << QString().leftJustified(8) << shape.rightJustified(11) << cell(editor) << cell(tree)
            << cell(median(samples[{ shape, programs.at(2) }].resident)) << cell(editor / tree, 2) << "\n";
    }
    return 0;
}
