import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App
import Varnis.Api

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
    function openSettings() {
        settingsLoader.active = true;
        (settingsLoader.item as SettingsWindow).open();
    }
    function openChangeLog() {
        changeLogLoader.active = true;
        (changeLogLoader.item as ChangeLogWindow).open();
    }

    // True from the first frame on. The first frame shows the apps and little else; the menus
    // (the most expensive part), the notices and the section's side follow a frame later, before
    // anybody can reach for them.
    property bool settled: false

    menuBar: menuLoader.item as MainMenuBar

    Loader {
        id: menuLoader
        active: root.settled
        source: "MainMenuBar.qml"
        onLoaded: {
            const bar = menuLoader.item as MainMenuBar
            bar.settingsRequested.connect(root.openSettings)
            bar.changeLogRequested.connect(root.openChangeLog)
        }
    }

    // The empty state's "Account hinzufügen …" opens the settings of this window.
    Connections {
        target: Shell
        function onSettingsRequested() { root.openSettings() }
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
            visible: active
            sourceComponent: SectionSidebar {
                host: Shell.workspace.sections
                onSectionChosen: position => Shell.workspace.goToSection(position)
            }
        }
        Rectangle {
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            visible: Shell.workspace.hasSelectedApp
            color: palette.mid
        }
        // The section's side comes a frame after the apps as well.
        Loader {
            Layout.fillWidth: true
            Layout.fillHeight: true
            active: root.settled
            sourceComponent: SectionContent {
                host: Shell.workspace.sections
            }
        }
    }

    Loader {
        anchors.fill: parent
        active: Shell.workspace.showsEmptyState
        sourceComponent: EmptyStatePage {}
    }

    footer: Loader {
        active: Shell.taskList.count > 0
        sourceComponent: TaskCenterBar {}
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

    Loader {
        active: Shell.workspace.isOnboardingPresented
        source: "OnboardingSheet.qml"
    }
}
