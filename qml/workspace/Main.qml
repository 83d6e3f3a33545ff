import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

ApplicationWindow {
    id: root
    objectName: "mainWindow"
    width: 1180
    height: 740
    minimumWidth: 900
    minimumHeight: 560
    visible: true
    title: Shell.workspace.windowTitle

    // The extra windows and sheets are made the first time they are needed, not at start-up.
    // Everything that is not in the first frame is named by address and used as a plain Window,
    // so that not even its file is read before it is needed.
    function showWindow(loader: Loader) {
        loader.active = true
        const window = loader.item as Window
        window.show()
        window.raise()
        window.requestActivate()
    }

    // True from the first frame on. The first frame shows the apps and little else; the menus
    // (the most expensive part), the notices and the section's side follow a frame later, before
    // anybody can reach for them.
    property bool settled: false

    menuBar: menuLoader.item as MenuBar

    Loader {
        id: menuLoader
        active: root.settled
        source: "MainMenuBar.qml"
    }

    // The menu and the empty state's "Account hinzufügen …" ask for these windows.
    Connections {
        target: Shell
        function onSettingsRequested() { root.showWindow(settingsLoader) }
        function onChangeLogRequested() { root.showWindow(changeLogLoader) }
    }

    Connections {
        target: root
        enabled: !root.settled
        function onFrameSwapped() {
            settle.start()
        }
    }

    // On the next turn of the event loop, once the frame is out.
    Timer {
        id: settle
        interval: 0
        onTriggered: root.settled = true
    }

    // The notices above the panes come a frame after the apps.
    header: Loader {
        active: root.settled
        sourceComponent: ColumnLayout {
        spacing: 0
        DemoBanner {
            Layout.fillWidth: true
            visible: Shell.workspace.isDemoActive
            text: Shell.workspace.demoBannerText
        }
        NoticeBar {
            Layout.fillWidth: true
            visible: Shell.workspace.appsError !== ""
            text: Shell.workspace.appsError
            tone: "negative"
        }
        NoticeBar {
            Layout.fillWidth: true
            visible: Shell.workspace.cacheAgeText !== ""
            text: Shell.workspace.cacheAgeText
            tone: "neutral"
        }
    }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0
        visible: !Shell.workspace.showsEmptyState

        // The panes give up width to the section in a small window.
        AppListPane {
            Layout.preferredWidth: Math.min(280, root.width * 0.26)
            Layout.fillHeight: true
            settled: root.settled
        }
        // Plain lines rather than separator controls: the first frame pays for every control.
        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            color: palette.mid
        }
        // Made when an app is first selected, not at start-up.
        Loader {
            Layout.preferredWidth: Math.min(210, root.width * 0.2)
            Layout.fillHeight: true
            active: Shell.workspace.hasSelectedApp
            visible: active && !Shell.workspace.showsReports
            Component.onCompleted: setSource("SectionSidebar.qml", { "host": Shell.workspace.sections })
        }
        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            visible: Shell.workspace.hasSelectedApp && !Shell.workspace.showsReports
            color: palette.mid
        }
        // The section's side comes a frame after the apps as well.
        Loader {
            Layout.fillWidth: true
            Layout.fillHeight: true
            active: root.settled
            visible: !Shell.workspace.showsReports
            Component.onCompleted: setSource("SectionContent.qml", { "host": Shell.workspace.sections })
        }
        // The account's reports take the place of the section; made when first shown.
        Loader {
            Layout.fillWidth: true
            Layout.fillHeight: true
            active: Shell.workspace.showsReports
            visible: active
            Component.onCompleted: setSource("qrc:/qt/qml/Varnis/Sales/SalesPage.qml",
                                             { "model": Shell.workspace.reports, "title": Shell.workspace.reportsTitle })
        }
    }

    Loader {
        anchors.fill: parent
        active: Shell.workspace.showsEmptyState
        source: "EmptyStatePage.qml"
    }

    footer: Loader {
        active: Shell.taskList.count > 0
        source: "qrc:/qt/qml/Varnis/Api/TaskCenterBar.qml"
    }

    // By address rather than by type, so that not even their files are read before they are needed.
    Loader {
        id: settingsLoader
        active: false
        source: "qrc:/qt/qml/Varnis/Api/SettingsWindow.qml"
    }

    Loader {
        id: changeLogLoader
        active: false
        source: "qrc:/qt/qml/Varnis/Api/ChangeLogWindow.qml"
    }

    Loader {
        active: Shell.writeConfirmation.isPresented
        Component.onCompleted: setSource("qrc:/qt/qml/Varnis/Api/WriteConfirmationSheet.qml", { "model": Shell.writeConfirmation })
    }

    // The sheet owns its model: it is made when the sheet opens and goes when it closes. The
    // model is handed over once, so that the closing sheet never sees it go.
    Loader {
        id: bulkActionsLoader
        Connections {
            target: Shell
            function onBulkActionsChanged() {
                if (Shell.bulkActions)
                    bulkActionsLoader.setSource("BulkActionsSheet.qml", { "model": Shell.bulkActions })
                else
                    bulkActionsLoader.source = ""
            }
        }
    }

    Loader {
        active: Shell.workspace.isOnboardingPresented
        source: "OnboardingSheet.qml"
    }
}
