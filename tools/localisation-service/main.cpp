// brightmere-localisation-service: serves a folder of bundle files to the kit
// on a loopback address, for development and the demo.
//
//   brightmere-localisation-service --folder tools/localisation-service/bundles --port 8787
//
// Prints "listening on <base address>" once it is ready (with --port 0 the
// port is a free one), then serves until stopped.
#include "BMLocalisationService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brightmere-localisation-service"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Serves localisation bundles to the Brightmere kit."));
    parser.addHelpOption();
    const QCommandLineOption host(QStringLiteral("host"), QStringLiteral("Address to listen on (default 127.0.0.1)."),
                                  QStringLiteral("address"), QStringLiteral("127.0.0.1"));
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("Port to listen on; 0 picks a free one (default 8787)."),
                                  QStringLiteral("port"), QStringLiteral("8787"));
    const QCommandLineOption folder(QStringLiteral("folder"),
                                    QStringLiteral("Folder of <lang>.json bundle files (default: the current folder)."),
                                    QStringLiteral("folder"), QStringLiteral("."));
    parser.addOptions({host, port, folder});
    parser.process(app);

    QTextStream err(stderr);
    const QHostAddress address(parser.value(host));
    if (address.isNull()) {
        err << "Not an address: " << parser.value(host) << '\n';
        return 2;
    }
    bool portOk = false;
    const uint portNumber = parser.value(port).toUInt(&portOk);
    if (!portOk || portNumber > 65535) {
        err << "Not a port: " << parser.value(port) << '\n';
        return 2;
    }
    const QString folderPath = QDir(parser.value(folder)).absolutePath();
    if (!QDir(folderPath).exists()) {
        err << "No such folder: " << folderPath << '\n';
        return 2;
    }

    BMLocalisationService service;
    service.setFolder(folderPath);
    if (service.listen(address, quint16(portNumber)) == 0) {
        err << "Cannot listen on " << address.toString() << ':' << portNumber << '\n';
        return 1;
    }
    QTextStream(stdout) << "listening on " << service.baseUrl() << " serving " << folderPath << Qt::endl;
    return app.exec();
}
