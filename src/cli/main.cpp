#include "exitcode.h"
#include "kelvmenutool.h"

#include <QFile>
#include <QStringList>

#include <cstdio>

// No QCoreApplication: it would take Qt's own options out of the command line, and kelvmenu must
// refuse every option it does not know.
int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QFile::decodeName(argv[i]));
    }

    QFile in;
    QFile out;
    QFile err;
    if (!in.open(stdin, QIODevice::ReadOnly) || !out.open(stdout, QIODevice::WriteOnly)
        || !err.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return ExitCode::WriteError;
    }
    KelvMenuTool tool(in, out, err);
    return tool.run(arguments);
}
