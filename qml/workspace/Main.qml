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

    // The menus are built right after the first frame: they are the most expensive part of the
    // window and nobody can reach for them before it is on screen.
    menuBar: menuLoader.item as MainMenuBar

    Loader {
        id: menuLoader
        active: false
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
        enabled: !menuLoader.active
        function onFrameSwapped() {
            menuLoader.active = true
        }
    }

    header: ColumnLayout {
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

    RowLayout {
        anchors.fill: parent
        spacing: 0
        visible: !Shell.workspace.showsEmptyState

        // The panes give up width to the section in a small window.
        AppListPane {
            Layout.preferredWidth: Math.min(280, root.width * 0.26)
            Layout.fillHeight: true
        }
        ToolSeparator {
            Layout.fillHeight: true
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
        ToolSeparator {
            Layout.fillHeight: true
            visible: Shell.workspace.hasSelectedApp
        }
        SectionContent {
            Layout.fillWidth: true
            Layout.fillHeight: true
            host: Shell.workspace.sections
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
