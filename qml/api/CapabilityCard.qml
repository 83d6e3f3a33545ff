import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// What the key may do, as measured by one telling call per area.
GroupBox {
    title: "Zugriffe des Schlüssels"

    ColumnLayout {
        anchors.fill: parent
        spacing: 4
        Label {
            Layout.fillWidth: true
            text: accountSettings.capabilityHeadline
            wrapMode: Text.Wrap
        }
        Repeater {
            model: accountSettings.capabilityRows
            delegate: RowLayout {
                required property var modelData
                Layout.fillWidth: true
                Accessible.name: modelData.title + (modelData.available ? ": verfügbar" : ": nicht verfügbar")
                Label {
                    text: modelData.available ? "✓" : "✗"
                    color: modelData.available ? "#1d6b2a" : "#8a1c1c"
                }
                Label {
                    text: modelData.title
                    font.bold: true
                }
                Label {
                    Layout.fillWidth: true
                    text: modelData.hint
                    wrapMode: Text.Wrap
                    color: palette.placeholderText
                }
            }
        }
        RowLayout {
            BusyIndicator {
                running: accountSettings.isProbing
                visible: running
                implicitWidth: 24
                implicitHeight: 24
            }
            Button {
                text: "Zugriffe messen"
                enabled: !accountSettings.isProbing
                onClicked: accountSettings.probe()
            }
        }
    }
}
