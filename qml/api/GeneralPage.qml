pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

ScrollView {
    id: page
    objectName: "generalPage"
    clip: true
    contentWidth: availableWidth
    contentHeight: content.implicitHeight + 24

    ColumnLayout {
        id: content
        x: 12
        y: 12
        width: page.availableWidth - 24 - page.ScrollBar.vertical.width
        spacing: 10
        Switch {
            objectName: "demoSwitch"
            text: "Demo-Modus"
            checked: Shell.workspace.isDemoModeEnabled
            onToggled: Shell.workspace.isDemoModeEnabled = checked
        }
        Label {
            objectName: "demoExplanationLabel"
            Layout.fillWidth: true
            text: Shell.accountSettings.demoExplanation
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
    }
}
