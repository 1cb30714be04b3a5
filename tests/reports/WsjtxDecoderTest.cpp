#include "WsjtxDecoder.h"
#include "DecodedMessage.h"
#include "QtPrinters.h"
#include "WsjtxDatagrams.h"

#include <gtest/gtest.h>

namespace zkr {
namespace {

using namespace test;

TEST(WsjtxMessage, SenderAndGrid) {
    const char *cases[][2] = {
        {"CQ EA7ABC IM76", "EA7ABC IM76"},
        {"CQ DX EA7ABC IM76", "EA7ABC IM76"},
        {"CQ 280 K1ABC FN42", "K1ABC FN42"},
        {"QRZ K1ABC", "K1ABC "},
        {"DL1ABC EA7ABC IM76", "EA7ABC IM76"},
        {"DL1ABC EA7ABC RR73", "EA7ABC "},
        {"DL1ABC EA7ABC R IM76", "EA7ABC IM76"},
        {"DL1ABC EA7ABC/P -12", "EA7ABC/P "},
        {"<...> EA7ABC IM76", "EA7ABC IM76"},
        {"DL1ABC <PJ4/K1ABC> FK52", "PJ4/K1ABC FK52"},
        {"<PA3XYZ> <G4ABC/P> R 590003 IO91NP", "G4ABC/P IO91NP"},
        {"K1ABC RR73; W9XYZ <KH1/KH7Z> -08", "KH1/KH7Z "},
        {"TU; DL1ABC EA7ABC R 579 0013", "EA7ABC "},
        {"CQ EA7ABC IM76                       ? a3", "EA7ABC IM76"},
        {"DL1ABC EA7ABC                        a1", "EA7ABC "},
        {"DL1ABC <...> -12", "-"},
        {"TNX 73 GL", "-"},
        {"CQ DX", "-"},
        {"", "-"},
    };
    for (const auto &[message, expected] : cases) {
        const auto sender = messageSender(message);
        EXPECT_EQ(sender ? sender->call.toByteArray() + " " + sender->grid.toByteArray() : "-",
                  QByteArray(expected))
            << message;
    }
}

const QDateTime Now(QDate(2023, 6, 12), QTime(18, 30, 20), Qt::UTC);
const QTime T(18, 30, 15);
const QString CqReport = "EA7ABC IM76 > DL1ABC JO62QM 50.314234 FT8 -12 2023-06-12 18:30:15 2290km";

TEST(WsjtxDecoder, DatagramsToReports) {
    const QByteArray a = status("A", 50313000, "DL1ABC", "JO62QM");
    const QByteArray cq = decode("A", T, -12, 1234, "CQ EA7ABC IM76");
    const QByteArray bad = Datagram(2, "A", 1) << true << T << -12 << 0.2 << 1234u << "~"
                                               << "CQ EA7ABC IM76";
    const struct {
        std::vector<QByteArray> datagrams;
        QStringList reports;
        qint64 dropped = 0;
    } cases[] = {
        {{a, cq}, {CqReport}},
        // RR73 is no grid; a call's grid is remembered for a later message
        // without one, but only once heard.
        {{a, decode("A", T, -12, 1234, "DL1ABC EA7ABC RR73"), cq,
          decode("A", T, -3, 1234, "K1ABC EA7ABC RR73")},
         {CqReport, QString(CqReport).replace(" -12 ", " -3 ")}},
        // JTDX's shorter Status; one that ends before the own call and
        // grid leaves the receiver to the settings.
        {{jtdxStatus("A", 50313000, "DL1ABC", "JO62QM"), cq}, {CqReport}},
        {{QByteArray(statusStart("A", 50313000, "", "")).chopped(8), cq},
         {"EA7ABC IM76 > DL9OWN JO40 50.314234 FT8 -12 2023-06-12 18:30:15 1915km"}},
        // Several instances, each with its dial; Close forgets one.
        {{a, status("B", 144174000, "DL1ABC", "JO62QM"),
          decode("B", T, -12, 1234, "CQ EA7ABC IM76"), Datagram(6, "A"), cq},
         {"EA7ABC IM76 > DL1ABC JO62QM 144.175234 FT8 -12 2023-06-12 18:30:15 2290km"}},
        {{cq}, {}},
        // Replays, low confidence and played-back files are no news; a
        // decode just before midnight is yesterday's.
        {{a, decode("A", T, -12, 1234, "CQ EA7ABC IM76", false),
          decode("A", T, -12, 1234, "CQ EA7ABC IM76", true, true),
          decode("A", T, -12, 1234, "CQ EA7ABC IM76", true, false, true),
          decode("A", QTime(23, 59, 45), -12, 1234, "CQ EA7ABC IM76")},
         {QString(CqReport).replace("2023-06-12 18:30:15", "2023-06-11 23:59:45")}},
        // Unknown types and unknown trailing fields are skipped; garbage,
        // another schema and cut fields are dropped.
        {{Datagram(99, "A") << 42u, QByteArray(a) + "more", QByteArray(cq) + "xyz"}, {CqReport}},
        {{a, "", "\xad\xbc\xcb\xda", QByteArray(a).replace(0, 1, "\xae"), bad, cq.chopped(3),
          cq.chopped(22), QByteArray(a).chopped(120)},
         {},
         7},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - &cases[0]);
        WsjtxDecoder decoder;
        decoder.setOwnStation("dl9own", "jo40");
        QStringList reports;
        for (const QByteArray &datagram : c.datagrams) {
            if (const auto report = decoder.decode(datagram, Now, u"127.0.0.1")) {
                EXPECT_EQ(report->source, ReportSource::Wsjtx);
                EXPECT_EQ(report->received, Now);
                reports << describe(*report);
            }
        }
        EXPECT_EQ(reports, c.reports);
        EXPECT_EQ(decoder.droppedDatagrams(), c.dropped);
    }
}

// An instance that stops sending is forgotten, and so are instances beyond
// the cap, the longest silent first.
TEST(WsjtxDecoder, ForgetsSilentInstances) {
    WsjtxDecoder decoder;
    for (int i = 0; i < WsjtxDecoder::MaxInstances + 5; ++i) {
        decoder.decode(status(QByteArray::number(i).constData(), 50313000, "DL1ABC", "JO62"),
                       Now.addSecs(i), u"x");
    }
    EXPECT_EQ(decoder.instanceCount(), WsjtxDecoder::MaxInstances);
    EXPECT_FALSE(decoder.decode(decode("0", T, -12, 1234, "CQ EA7ABC IM76"), Now, u"x"));
    decoder.decode(QByteArray(Datagram(0, "x")), Now.addSecs(WsjtxDecoder::SilentSeconds + 32),
                   u"x");
    EXPECT_EQ(decoder.instanceCount(), 5);
}

} // namespace
} // namespace zkr
