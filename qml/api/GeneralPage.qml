import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

Pane {
    ColumnLayout {
        anchors.fill: parent
        spacing: 10
        Switch {
            objectName: "demoSwitch"
            text: "Demo-Modus"
            checked: workspace.isDemoModeEnabled
            onToggled: workspace.isDemoModeEnabled = checked
        }
        Label {
            Layout.fillWidth: true
            text: workspace.demoExplanation
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
        Item {
            Layout.fillHeight: true
        }
    }
}
