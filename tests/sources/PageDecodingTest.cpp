#include "PageDecoding.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

TEST(PageDecoding, ReadsUtf8OnlyWhenThePageSaysSoAndWindows1252Otherwise) {
    const QByteArray utf8 = "\xE2\x82\xAC \xE2\x80\x9C"
                            "Es\xE2\x80\x9D \xC3\xA9";
    const QString text = QString::fromUtf8("€ “Es” é");
    const QByteArray metaUtf8 = "<html><head><META CHARSET = 'UTF-8'></head>";
    const QByteArray httpEquiv =
        "<meta name=x><META http-equiv=\"Content-Type\" content=\"text/html; Charset = utf8\">";
    // clang-format off
    const struct { const char *name; QByteArray contentType, body; QString expected; } cases[] = {
        // Every printable character of 0x80-0x9F; the free ones stay C1 codes.
        {"Windows-1252 specials", "", "\x80\x81\x82\x85\x8A\x8D\x8E\x91\x92\x93\x94\x96\x97\x99\x9C\x9F\xA0\xE9",
         "€\u0081‚…Š\u008DŽ‘’“”–—™œŸ\u00A0é"},
        {"quoted header", "text/html;charset=\"utf-8\"", utf8, text},
        {"header says single-byte", "text/html; charset=iso-8859-1", "\x93x\x94", "“x”"},
        {"header wins over meta", "text/html; charset=windows-1252", metaUtf8 + "\x80",
         QString::fromLatin1(metaUtf8) + "€"},
        {"http-equiv", "", httpEquiv + utf8, QString::fromLatin1(httpEquiv) + text},
        {"charset only in the text", "", "<p>charset=utf-8</p>\x80", "<p>charset=utf-8</p>€"},
        {"meta too far down", "", QByteArray(1024, ' ') + metaUtf8 + "\x80",
         QString(1024, u' ') + QString::fromLatin1(metaUtf8) + "€"},
        {"UTF-8 mark", "text/html; charset=iso-8859-1", "\xEF\xBB\xBF" + utf8, text},
        {"UTF-16 mark", "", QByteArray("\xFF\xFE\xAC\x20\x20\x00", 6), "€ "},
    };
    // clang-format on
    for (const auto &c : cases) {
        EXPECT_EQ(decodeWebPage(c.body, c.contentType), c.expected) << c.name;
    }
}

// The console's text: a character cut between two reads comes whole.
TEST(StreamDecoder, ReadsLineByLineAndKeepsACutCharacterForTheNextRead) {
    StreamDecoder decoder;
    QString text;
    for (const char *read : {"caf\xC3", "\xA9 \xE2\x82", "\xAC\r\n\x80 \xE9t\xE9\r\n"}) {
        text += decoder.decode(read);
    }
    EXPECT_EQ(text, "café €\r\n€ été\r\n");
}

} // namespace
