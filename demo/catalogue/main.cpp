#include "demo/catalogue/products.h"
#include "demo/catalogue/workshop.h"

#include <QGuiApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "usage: quillmar-demo-catalogue OUTDIR" << Qt::endl;
        return 2;
    }
    quillmar::demo::Workshop workshop(arguments.at(1));
    quillmar::demo::makePacks(workshop);
    quillmar::demo::makeMotion(workshop);
    quillmar::demo::makeOddities(workshop);
    quillmar::demo::makePictures(workshop);
    const QStringList errors = workshop.finish();
    for (const QString &error : errors)
        QTextStream(stderr) << "quillmar-demo-catalogue: " << error << Qt::endl;
    return errors.isEmpty() ? 0 : 1;
}
