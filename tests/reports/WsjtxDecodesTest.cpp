#include "AllTxtReader.h"
#include "FileReplay.h"
#include "DecodedMessage.h"
#include "QtPrinters.h"
#include "WaitFor.h"
#include "WsjtxDatagrams.h"
#include "WsjtxDecoder.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace zkr {
namespace {

using namespace test;

TEST(WsjtxMessage, SenderAndGrid) {
    const char *cases[][2] = {
        {"CQ DX EA7ABC IM76", "EA7ABC IM76"},
        {"QRZ 280 K1ABC FN42", "K1ABC FN42"},
        {"DL1ABC EA7ABC R IM76", "EA7ABC IM76"},
        {"<...> EA7ABC IM76", "EA7ABC IM76"},
        {"DL1ABC <PJ4/K1ABC> FK52", "PJ4/K1ABC FK52"},
        {"<PA3XYZ> <G4ABC/P> R 590003 IO91NP", "G4ABC/P IO91NP"},
        {"K1ABC RR73; W9XYZ <KH1/KH7Z> -08", "KH1/KH7Z "},
        {"CQ EA7ABC IM76                       ? a3", "EA7ABC IM76"},
        {"TU; DL1ABC EA7ABC/P                  a1", "EA7ABC/P "},
        {"DL1ABC <...> -12", "-"},
    };
    for (const auto &[message, expected] : cases) {
        const auto sender = messageSender(message);
        EXPECT_EQ(sender ? sender->call.toByteArray() + " " + sender->grid.toByteArray() : "-",
                  QByteArray(expected));
    }
}

const QDateTime Now(QDate(2023, 6, 12), QTime(18, 30, 20), Qt::UTC);
const QTime T(18, 30, 15);
const QString Cq = "EA7ABC IM76 > DL1ABC JO62QM 50.314234 FT8 -12 2023-06-12 18:30:15 2290km";

TEST(WsjtxDecoder, DatagramsToReports) {
    const QByteArray a = status("A", 50313000, "DL1ABC", "JO62QM");
    const QByteArray cq = decode("A", T, -12, 1234, "CQ EA7ABC IM76");
    const auto rr73 = [](const char *id) { return decode(id, T, -3, 1234, "K1ABC EA7ABC RR73"); };
    const auto cqFlagged = [](std::array<bool, 3> f) {
        return decode("A", T, -12, 1234, "CQ EA7ABC IM76", f);
    };
    const struct {
        std::vector<QByteArray> datagrams;
        QStringList reports;
        qint64 dropped = 0;
    } cases[] = {
        // RR73 is no grid; a grid heard before is the call's grid.
        {{a, rr73("A"), cq, rr73("A")}, {Cq, QString(Cq).replace(" -12 ", " -3 ")}},
        // JTDX's shorter Status; one without the own grid: the settings'.
        {{status("A", 50313000, "DL1ABC", "JO62QM", 1), cq}, {Cq}},
        {{status("A", 50313000, "", "", 0).chopped(8), cq},
         {QString(Cq).replace("DL1ABC JO62QM", "DL9OWN JO40").replace("2290", "1915")}},
        // Instances by Id, each with its dial; Close forgets one.
        {{a, status("B", 144174000, "DL1ABC", "JO62QM"), cq, rr73("B"), Datagram(6, "A"), cq},
         {Cq, QString(Cq).replace(" -12 ", " -3 ").replace("50.314", "144.175")}},
        // No replays, low confidence, playbacks; yesterday's last decode.
        {{a, cqFlagged({false, false, false}), cqFlagged({true, true, false}),
          cqFlagged({true, false, true}),
          decode("A", QTime(23, 59, 45), -12, 1234, "CQ EA7ABC IM76")},
         {QString(Cq).replace("06-12 18:30:15", "06-11 23:59:45")}},
        // Unknown types and fields skipped; garbage, schema 1, cuts dropped.
        {{Datagram(99, "A") << 42u, QByteArray(a) + "more", QByteArray(cq) + "xyz", "",
          "\xad\xbc\xcb\xda", QByteArray(a).replace(0, 1, "\xae"),
          QByteArray(cq).replace(7, 1, "\1"), cq.chopped(3), cq.chopped(22),
          QByteArray(a).chopped(120)},
         {Cq},
         7},
    };
    for (const auto &c : cases) {
        WsjtxDecoder decoder;
        decoder.setOwnStation("dl9own", "jo40");
        QStringList reports;
        for (const QByteArray &datagram : c.datagrams) {
            if (const auto report = decoder.decode(datagram, Now, u"127.0.0.1")) {
                EXPECT_TRUE(report->source == ReportSource::Wsjtx && report->received == Now);
                reports << describe(*report);
            }
        }
        EXPECT_EQ(reports, c.reports) << &c - &cases[0];
        EXPECT_EQ(decoder.droppedDatagrams(), c.dropped);
    }
}

// Silent instances are forgotten, and those beyond the cap, the longest
// silent first.
TEST(WsjtxDecoder, ForgetsSilentInstances) {
    WsjtxDecoder decoder;
    for (int i = 0; i < WsjtxDecoder::MaxInstances + 5; ++i) {
        decoder.decode(status(QByteArray::number(i).data(), 1, "", ""), Now.addSecs(i), u"x");
    }
    EXPECT_FALSE(decoder.decode(decode("0", T, -12, 1234, "CQ EA7ABC IM76"), Now, u"x"));
    EXPECT_EQ(decoder.instanceCount(), WsjtxDecoder::MaxInstances);
    decoder.decode(status("x", 1, "", ""), Now.addSecs(WsjtxDecoder::SilentSeconds + 32), u"x");
    EXPECT_EQ(decoder.instanceCount(), 6);
}

const QString Wsjtx = "230612_183015    50.313 Rx FT8    -12  0.2 1234 ";
const QString Jtdx = "20230612_183015 -12  0.2 1234 ~ ";
const QString CqLog = "EA7ABC IM76 > DL9OWN JO40 50.314234 FT8 -12 2023-06-12 18:30:15 1915km";
// Message fields of WSJT-X (37 wide, "?" at its end) and JTDX (26, a flag).
const QString Cq37 = QString("CQ EA7ABC IM76").leftJustified(36);
const QString Rr26 = QString("DL1ABC EA7ABC RR73").leftJustified(26);

// The reports of a log (the last line without an end) replayed from a file,
// or fed a byte at a time.
QStringList read(const QStringList &lines, bool bytes) {
    AllTxtReader reader;
    FileReplay replay;
    QTemporaryFile file;
    QStringList reports;
    reader.setOwnStation("DL9OWN", "JO40");
    QObject::connect(&reader, &AllTxtReader::reception, [&](const Reception &r) {
        EXPECT_TRUE(r.source == ReportSource::AllTxt && r.received == r.time);
        reports << describe(r);
    });
    const QByteArray log = lines.join("\r\n").toLatin1();
    for (qsizetype at = 0; bytes && at < log.size(); ++at) {
        reader.receive(QByteArrayView(log).sliced(at, 1));
    }
    reader.finish();
    if (!bytes && file.open() && file.write(log) && file.flush() &&
        replay.start(file.fileName(), reader)) {
        EXPECT_TRUE(waitFor([&] { return !replay.isRunning(); }));
    }
    return reports;
}

TEST(AllTxtReader, LayoutsOfWsjtxAndJtdx) {
    const std::pair<QStringList, QStringList> cases[] = {
        {{Wsjtx + "CQ EA7ABC IM76",
          "230612_183030    50.313 Tx FT8      0  0.0 1500 CQ DL9OWN JO40",
          "230612_183045     0.000 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76",
          "231312_183015    50.313 Rx FT8    -12  0.2 1234 CQ EA7ABC IM76", Wsjtx + Cq37 + "? a3",
          Wsjtx + Cq37 + "  a1", Wsjtx + "DL1ABC EA7ABC RR73"},
         {CqLog, CqLog, CqLog}},
        {{Jtdx + "CQ EA7ABC IM76", "20230612_183000  50.313 MHz  FT8", Jtdx + "CQ EA7ABC IM76",
          Jtdx + Rr26 + "*", "20230612_184000  144.174 MHz  FT8 JTDX v2.2.159",
          "20230612_184015 -15  0.1  987 ~ " + Rr26 + "d"},
         {CqLog, "EA7ABC IM76 > DL9OWN JO40 144.174987 FT8 -15 2023-06-12 18:40:15 1915km"}},
        {{"2018-05-30 18:30  50.313 MHz  FT8", "183015 -12  0.2 1234 ~  CQ EA7ABC IM76",
          "180530_183030  Transmitting 50.313 MHz  FT8:  CQ DL9OWN JO40"},
         {QString(CqLog).replace("2023-06-12", "2018-05-30")}},
    };
    for (const auto &[lines, reports] : cases) {
        EXPECT_EQ(read(lines, false), reports);
        EXPECT_EQ(read(lines, true), reports); // every line cut between pieces
    }
}

} // namespace
} // namespace zkr
