// brightmere-speed-source: what a walking device measures its Wi-Fi against.
// Run it on a machine wired to the router; it serves an endless stream of
// bytes over HTTP and prints the address to give the demo:
//
//   brightmere-speed-source --port 8080 --all-interfaces
//   brightmere_demo --tester http://<printed address>:8080/stream
//
// Loopback only unless --all-interfaces (or --host) says otherwise. Each
// finished client gets one line: its address, the bytes it was sent and
// the rate they went at.
#include "BMSpeedSource.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("brightmere-speed-source"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Serves an endless (or sized: /stream?bytes=N) byte stream over HTTP for Wi-Fi measurements."));
    parser.addHelpOption();
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("Port to listen on; 0 picks a free one (default 8080)."),
                                  QStringLiteral("port"), QStringLiteral("8080"));
    const QCommandLineOption everywhere(QStringLiteral("all-interfaces"),
                                        QStringLiteral("Listen on every network interface, so devices on the network reach it "
                                                       "(default: loopback only)."));
    const QCommandLineOption host(QStringLiteral("host"), QStringLiteral("Listen on this one address instead."),
                                  QStringLiteral("address"));
    const QCommandLineOption rate(QStringLiteral("rate"),
                                  QStringLiteral("Send at most this many Mbps to each client (default: as fast as possible)."),
                                  QStringLiteral("Mbps"), QStringLiteral("0"));
    const QCommandLineOption clients(QStringLiteral("max-clients"),
                                     QStringLiteral("Clients served at once; more are turned away (default %1).")
                                         .arg(BMSpeedSource::kDefaultMaxClients),
                                     QStringLiteral("count"), QString::number(BMSpeedSource::kDefaultMaxClients));
    parser.addOptions({port, everywhere, host, rate, clients});
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);
    if (parser.isSet(everywhere) && parser.isSet(host)) {
        err << "--all-interfaces and --host exclude each other\n";
        return 2;
    }
    QHostAddress address = parser.isSet(everywhere) ? QHostAddress(QHostAddress::Any) : QHostAddress(QHostAddress::LocalHost);
    if (parser.isSet(host)) {
        address = QHostAddress(parser.value(host));
        if (address.isNull()) {
            err << "Not an address: " << parser.value(host).left(100) << '\n';
            return 2;
        }
    }
    bool ok = false;
    const uint portNumber = parser.value(port).toUInt(&ok);
    if (!ok || portNumber > 65535) {
        err << "Not a port: " << parser.value(port).left(100) << '\n';
        return 2;
    }
    const double mbps = parser.value(rate).toDouble(&ok);
    if (!ok || !(mbps >= 0.0) || mbps > 1e6) {
        err << "Not a rate in Mbps: " << parser.value(rate).left(100) << '\n';
        return 2;
    }
    const int maxClients = parser.value(clients).toInt(&ok);
    if (!ok || maxClients < 1 || maxClients > 10000) {
        err << "Not a client count (1 to 10000): " << parser.value(clients).left(100) << '\n';
        return 2;
    }

    BMSpeedSource source;
    source.setBytesPerSecond(mbps * 1e6 / 8.0);
    source.setMaxClients(maxClients);
    if (source.listen(address, quint16(portNumber)) == 0) {
        err << "Cannot listen on " << address.toString() << ':' << portNumber << '\n';
        return 1;
    }
    out << "speed source listening on " << address.toString() << ':' << source.port()
        << (mbps > 0.0 ? QStringLiteral(", at most %1 Mbps a client").arg(mbps) : QString()) << '\n';
    out << "measure from:\n";
    for (const QUrl &url : source.streamUrls())
        out << "  " << url.toString() << '\n';
    if (!parser.isSet(everywhere) && address.isLoopback())
        out << "(loopback only: --all-interfaces lets a device on the network reach it)\n";
    out.flush();

    QObject::connect(&source, &BMSpeedSource::clientFinished, &source,
                     [&out](const QString &peer, qint64 bytes, double seconds) {
                         out << peer << ": " << bytes << " bytes";
                         if (seconds > 0.0)
                             out << " in " << QString::number(seconds, 'f', 1) << " s, "
                                 << QString::number(double(bytes) * 8.0 / 1e6 / seconds, 'f', 1) << " Mbps";
                         out << Qt::endl;
                     });
    return app.exec();
}
