import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Api
import Varnis.App

// One app in a window of its own, with its own sections and its own write-confirmation sheet.
ApplicationWindow {
    id: window
    objectName: "appWindow"
    required property AppWindowViewModel model
    width: 960
    height: 640
    minimumWidth: 800
    minimumHeight: 520
    visible: true
    title: model.windowTitle

    Shortcut {
        sequence: "Ctrl+W"
        onActivated: window.close()
    }

    SectionShortcuts {
        onSectionRequested: position => window.model.goToSection(position)
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0
        SectionSidebar {
            Layout.preferredWidth: 210
            Layout.fillHeight: true
            host: window.model.sections
        }
        ToolSeparator {
            Layout.fillHeight: true
        }
        SectionContent {
            Layout.fillWidth: true
            Layout.fillHeight: true
            host: window.model.sections
        }
    }

    Loader {
        active: window.model.writeConfirmation.isPresented
        Component.onCompleted: setSource("qrc:/qt/qml/Varnis/Api/WriteConfirmationSheet.qml",
                                         { "model": window.model.writeConfirmation })
    }
}
