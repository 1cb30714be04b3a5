#pragma once

#include "CliOptions.h"
#include "CliReplay.h"
#include "IniFile.h"
#include "LocalClusterServer.h"
#include "LocalHttpServer.h"
#include "PaneView.h"
#include "ProgramState.h"
#include "QtPrinters.h"
#include "ScriptedPlatform.h"
#include "SiteDefaults.h"
#include "SpotSources.h"
#include "WaitFor.h"
#include "frmZKR_MUF.h"
#include "frmZKR_MUF_Setup.h"

#include <QBuffer>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>

#include <gtest/gtest.h>

namespace zkr::test {

inline QByteArray readBytes(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeBytes(const QString &path, const QByteArray &bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// The service's page: its 79-character redirect script, then one 6 m Es spot
// whose comment ends in the six characters given.
inline QByteArray spotPage(const QByteArray &tail) {
    return "<html><script>" + QByteArray(79, 'S') + "</script><pre>\n" +
           "DL1ABC         50110.0 OH1XYZ       JO90JR &lt;ES&gt; KP20 " + tail +
           "      1712\n</pre></html>";
}

// A pane as text and colour runs, for comparing two whole panes.
inline QStringList paneLines(const MemoryPane &pane) {
    QStringList out;
    for (std::int64_t i = 0; i < pane.lineCount(); ++i) {
        QString line = pane.line(i).text + QLatin1Char('|');
        for (const ColourRun &run : pane.line(i).runs) {
            line += QStringLiteral("%1:%2 ").arg(run.length).arg(run.colour, 0, 16);
        }
        out.append(line);
    }
    return out;
}

// The panes the headless tool makes of the same bytes (a cluster record or a
// web page), seen from JO62QM.
inline std::vector<QStringList> toolPanes(QByteArray bytes, bool webPage) {
    CliOptions options;
    options.ownLocator = QStringLiteral("JO62QM");
    options.webPage = webPage;
    CliReplay tool(options);
    QBuffer input(&bytes);
    input.open(QIODevice::ReadOnly);
    webPage ? tool.evaluateSpotPage(input) : void(tool.replayClusterText(input));
    std::vector<QStringList> out;
    for (const MemoryPane &pane : tool.panes()) {
        out.push_back(paneLines(pane));
    }
    return out;
}

// The program in a folder of its own; its cluster and web server on this machine.
template <class PlatformType = ScriptedPlatform> struct ProgramRigOn {
    QTemporaryDir folder;
    LocalClusterServer node;
    LocalHttpServer web;
    ProgramState state;
    PlatformType platform;
    frmZKR_MUF window{state, platform};

    ProgramRigOn() {
        platform.setApplicationFolder(folder.path());
        platform.setEnvironmentValue(site::WebClusterUrlVariable, web.url("/DxSpots.aspx"));
        platform.setEnvironmentValue(site::DownloadPageUrlVariable, web.url("/download.html"));
        window.sources().web().setOptions({11, 300, 600, 600});
        window.sources().updateWeb().setOptions({11, 300, 600, 600});
    }
    // Starts with settings of this own call, using the cluster of this machine.
    void start(const QString &ownCall = "DL1ABC", const QString &updateCheck = "off") {
        LocalClusterServer::writeSettings(folder.path(), node.port());
        Ini_Write("Call", "OwnCall", ownCall, folder.filePath("zkr_muf.ini"));
        Ini_Write("AutoUpdateCheck", "UpdateCheck", updateCheck, folder.filePath("zkr_muf.ini"));
        window.Form_Load();
    }
    void answer(const QString &path, const QByteArray &body, int status = 200) {
        LocalHttpServer::Response response;
        response.status = status;
        response.body = body;
        web.setResponse(path, response);
    }
    QString ini() const { return QString::fromLatin1(readBytes(state.IniFilePath)); }
    QString pane(int i) const { return window.displayPane(i)->text(); }
    template <class T = QWidget> T *child(const char *name) {
        return window.findChild<T *>(QLatin1String(name));
    }
    QString label(const char *name) { return child<QLabel>(name)->text(); }
    // The Setup button; `inside` runs while the dialog is open.
    void openSetup(const std::function<void(frmZKR_MUF_Setup &)> &inside) {
        window.setupWindow().setModalSession([&inside](frmZKR_MUF_Setup &dialog) {
            dialog.show();
            inside(dialog);
        });
        window.Setup_Click();
    }
    // The web fetch under way, if any, has ended.
    bool webIdle() {
        return waitFor([this] { return !window.sources().web().isBusy(); });
    }
};
using ProgramRig = ProgramRigOn<>;

} // namespace zkr::test
