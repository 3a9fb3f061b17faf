#include "demo/tour/tour.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Shows the module in a real OBS Studio, on a display of its own."_s);
    parser.addHelpOption();
    parser.addOption({u"output"_s, u"Folder for the screenshots."_s, u"DIR"_s});
    parser.process(application);
    const QString output = parser.value(u"output"_s);
    if (output.isEmpty() || !QDir().mkpath(output)) {
        QTextStream(stderr) << "quillmar-demo-tour: --output wants a folder that can be made" << Qt::endl;
        return 2;
    }
    return quillmar::demo::Tour(QStringLiteral(QUILLMAR_DEMO_CATALOGUE), QDir(output)).run() ? 0 : 1;
}
