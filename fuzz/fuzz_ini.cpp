// A settings file, anything at all: read every key the program reads, write
// one, and the file must still hold every other line and give the value back.
#include "FuzzSupport.h"
#include "IniFile.h"

#include <optional>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ensureApplication();
    const QByteArray content(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    zkr::IniFile ini(content);
    const char *keys[][2] = {{"Version", "Version"},    {"Call", "OwnCall"},
                             {"Locator", "OwnLocator"}, {"Telnet", "Telnet_Host"},
                             {"Position", "Left"},      {"AutoUpdateCheck", "UpdateCheck"}};
    std::vector<std::optional<QString>> before;
    for (const auto &key : keys) {
        before.push_back(ini.value(QString::fromLatin1(key[0]), QString::fromLatin1(key[1])));
    }
    ini.setValue(QStringLiteral("Call"), QStringLiteral("OwnCall"), QStringLiteral("DL1ABC"));
    const zkr::IniFile again(ini.content());
    const std::optional<QString> call = again.value(u"call", u"OWNCALL");
    check(call && *call == QStringLiteral("DL1ABC"));
    for (std::size_t i = 0; i < before.size(); ++i) { // the write changed no other key
        check(QLatin1String(keys[i][1]) == QLatin1String("OwnCall") ||
              again.value(QString::fromLatin1(keys[i][0]), QString::fromLatin1(keys[i][1])) ==
                  before[i]);
    }
    return 0;
}
