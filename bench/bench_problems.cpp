// Times the check of a menu for problems on the largest menus a menu file can hold: the check of a
// document (what the editor's Problems list runs after every edit) and of a file's bytes (what
// kelvmenu check runs, reading included), and the save check alone (what every Save runs first, the
// length of the file counted in it). Each on two menus of every shape: as generated, where most
// commands name a variable the catalogue does not know ("$dest$", "$fs-1234$"), so that nearly every
// item has a problem, and the same menu with catalogue variables only, as a sound menu has. Then
// `kelvmenu check` of the first menu, whole: its time and the size of the warnings it prints.
// Run by hand on a release build: kelvbench_problems [runs]

#include "benchtiming.h"
#include "menugenerator.h"

#include "cli/kelvmenutool.h"
#include "core/menuproblemcheck.h"
#include "menufile/menufilereader.h"
#include "menufile/menufilewriter.h"
#include "menufile/saveproblemcheck.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QIODevice>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

QString cell(double milliseconds)
{
    return QString::number(milliseconds, 'f', 1).rightJustified(12);
}

/// The menu with variables of the catalogue only: "$dest$" becomes "$fs-dest-001$", and the file
/// numbers of "$fs-NNNN$" get their three digits.
MenuDocument soundMenu(MenuDocument document)
{
    const QRegularExpression fileNumber(QStringLiteral("\\$fs-\\d+\\$"));
    for (MenuItem& item : document.items) {
        for (Command& command : item.commands) {
            command.command.replace(QStringLiteral("$dest$"), QStringLiteral("$fs-dest-001$"));
            command.command.replace(fileNumber, QStringLiteral("$fs-002$"));
        }
    }
    return document;
}

/// Keeps nothing of what is written to it, only how much: kelvmenu check prints hundreds of
/// megabytes of warnings on a deep menu.
class ByteCounter final : public QIODevice
{
public:
    ByteCounter() { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    qint64 count() const { return m_count; }
    void zero() { m_count = 0; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override
    {
        m_count += size;
        return size;
    }

private:
    qint64 m_count = 0;
};

QString megabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e6, 'f', 1).rightJustified(12);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int runs = arguments.size() > 1 ? std::max(1, arguments.at(1).toInt()) : 11;

    QTextStream out(stdout);
    out << "Median of " << runs << " runs, milliseconds. 32,767 items, 2 to 5 commands each.\n";
    out << "document: MenuProblems::checkDocument; file: MenuProblems::checkFileBytes (reading included);\n"
           "read: readMenuBytes alone, for comparison; save check: findSaveProblems; size: menuFileSize;\n"
           "bytes: menuFileBytes, which a save builds after the check. \"many\": nearly every item has a\n"
           "problem; \"sound\": catalogue variables only. problems: found in the many / the sound menu.\n\n";
    const QStringList headers { QStringLiteral("shape"),      QStringLiteral("problems"),
                                QStringLiteral("doc many"),   QStringLiteral("doc sound"),
                                QStringLiteral("file many"),  QStringLiteral("file sound"),
                                QStringLiteral("read sound"), QStringLiteral("save check"),
                                QStringLiteral("size"),       QStringLiteral("bytes") };
    for (const QString& header : headers) {
        out << header.rightJustified(12);
    }
    out << '\n';

    for (const MenuShape shape : MenuGenerator::allShapes()) {
        MenuGenerator::Options options;
        options.shape = shape;
        const MenuDocument many = MenuGenerator::generate(options);
        const MenuDocument sound = soundMenu(many);
        const QByteArray manyBytes = menuFileBytes(many);
        const QByteArray soundBytes = menuFileBytes(sound);

        qsizetype problemCount = 0;
        const auto none = [] {};
        const double documentMany
            = medianMilliseconds(runs, none, [&] { problemCount = MenuProblems::checkDocument(many).size(); });
        qsizetype soundProblems = 0;
        const double documentSound
            = medianMilliseconds(runs, none, [&] { soundProblems = MenuProblems::checkDocument(sound).size(); });
        const double fileMany = medianMilliseconds(runs, none, [&] { MenuProblems::checkFileBytes(manyBytes); });
        const double fileSound = medianMilliseconds(runs, none, [&] { MenuProblems::checkFileBytes(soundBytes); });
        const double readSound = medianMilliseconds(runs, none, [&] {
            MenuDocument read;
            readMenuBytes(soundBytes, read);
        });

        const double saveCheck = medianMilliseconds(runs, none, [&] { findSaveProblems(sound); });
        const double size = medianMilliseconds(runs, none, [&] { menuFileSize(sound); });
        const double bytes = medianMilliseconds(runs, none, [&] { menuFileBytes(sound); });

        out << MenuGenerator::shapeName(shape).rightJustified(12)
            << (QString::number(problemCount) + QLatin1Char('/') + QString::number(soundProblems)).rightJustified(12)
            << cell(documentMany) << cell(documentSound) << cell(fileMany) << cell(fileSound) << cell(readSound)
            << cell(saveCheck) << cell(size) << cell(bytes) << '\n';
        out.flush();
    }
    out << "\nGoal: the check of a document under 100 ms.\n";

    out << "\nkelvmenu check of the \"many\" menu read from a file, its warnings counted, not kept.\n"
           "warnings: lines printed; size: megabytes printed; check: milliseconds.\n";
    const QStringList checkHeaders { QStringLiteral("shape"), QStringLiteral("warnings"), QStringLiteral("size"),
                                     QStringLiteral("check") };
    for (const QString& header : checkHeaders) {
        out << header.rightJustified(12);
    }
    out << '\n';
    const QTemporaryDir folder;
    for (const MenuShape shape : MenuGenerator::allShapes()) {
        MenuGenerator::Options options;
        options.shape = shape;
        const QString path = folder.filePath(MenuGenerator::shapeName(shape) + QStringLiteral(".ini"));
        writeMenuFile(MenuGenerator::generate(options), path);
        QBuffer in;
        ByteCounter printed;
        ByteCounter warned;
        const double check = medianMilliseconds(
            runs,
            [&] {
                printed.zero();
                warned.zero();
            },
            [&] {
                KelvMenuTool tool(in, printed, warned);
                tool.run({ QStringLiteral("check"), path });
            });
        const qsizetype warnings = MenuProblems::checkFile(path).problems.size();
        out << MenuGenerator::shapeName(shape).rightJustified(12) << QString::number(warnings).rightJustified(12)
            << megabytes(printed.count() + warned.count()) << cell(check) << '\n';
        out.flush();
    }
    return 0;
}
