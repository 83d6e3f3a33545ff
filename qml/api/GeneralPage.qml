import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

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
            checked: workspace.isDemoModeEnabled
            onToggled: workspace.isDemoModeEnabled = checked
        }
        Label {
            objectName: "demoExplanationLabel"
            Layout.fillWidth: true
            text: accountSettings.demoExplanation
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
    }
}
