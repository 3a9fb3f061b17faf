#include "demo/service/demo_service.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace
{

struct Option {
    QString name;
    QString description;
    QString value;
};

const QList<Option> &requiredOptions()
{
    static const QList<Option> options{
        {u"host"_s, u"Name that the service answers for."_s, u"NAME"_s},
        {u"port"_s, u"Port on the loopback address; 0 takes any free one."_s, u"NUMBER"_s},
        {u"certificate"_s, u"Certificate chain in PEM form."_s, u"FILE"_s},
        {u"key"_s, u"Private key in PEM form."_s, u"FILE"_s},
        {u"catalogue"_s, u"Folder made by quillmar-demo-catalogue."_s, u"DIR"_s},
        {u"log"_s, u"Access log, one JSON object per line."_s, u"FILE"_s},
    };
    return options;
}

int fail(const QString &message)
{
    QTextStream(stderr) << "quillmar-demo-service: " << message << Qt::endl;
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"The Quillmar web service, for demonstrations and tests."_s);
    parser.addHelpOption();
    for (const Option &option : requiredOptions())
        parser.addOption({option.name, option.description, option.value});
    parser.addOption({u"giant-package"_s, u"Add a product with a package of this many bytes."_s, u"BYTES"_s});
    parser.process(application);
    for (const Option &option : requiredOptions()) {
        if (!parser.isSet(option.name))
            return fail(u"--%1 %2 is missing"_s.arg(option.name, option.value));
    }
    bool isPort = false;
    quillmar::demo::DemoServiceSettings settings;
    settings.host = parser.value(u"host"_s);
    settings.port = parser.value(u"port"_s).toUShort(&isPort);
    settings.certificateFile = parser.value(u"certificate"_s);
    settings.keyFile = parser.value(u"key"_s);
    settings.catalogueFolder = parser.value(u"catalogue"_s);
    settings.logFile = parser.value(u"log"_s);
    settings.giantPackageBytes = parser.value(u"giant-package"_s).toLongLong();
    if (!isPort)
        return fail(u"--port wants a number from 0 to 65535"_s);
    quillmar::demo::DemoService service(settings);
    if (const QString error = service.start(); !error.isEmpty())
        return fail(error);
    QTextStream(stdout) << "listening on " << service.port() << "\nready" << Qt::endl;
    return QCoreApplication::exec();
}
