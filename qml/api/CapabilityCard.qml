pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App
import Varnis.Theme

// What the key may do, as measured by one telling call per area.
GroupBox {
    title: "Zugriffe des Schlüssels"

    ColumnLayout {
        anchors.fill: parent
        spacing: 4
        Label {
            objectName: "capabilityHeadline"
            Layout.fillWidth: true
            text: Shell.accountSettings.capabilityHeadline
            wrapMode: Text.Wrap
            color: Theme.toneColor(Shell.accountSettings.capabilityHeadlineTone, palette.windowText)
        }
        Button {
            objectName: "reimportKeyButton"
            visible: Shell.accountSettings.isKeyMissing
            text: "Schlüssel erneut importieren …"
            onClicked: Shell.accountSettings.reimportKey()
        }
        Repeater {
            model: Shell.accountSettings.capabilities
            delegate: RowLayout {
                required property string title
                required property string hint
                required property string mark
                required property string markTone
                required property string accessibleName
                Layout.fillWidth: true
                Accessible.name: accessibleName
                Label {
                    text: parent.mark
                    color: Theme.toneColor(parent.markTone, palette.windowText)
                }
                Label {
                    text: parent.title
                    font.bold: true
                }
                Label {
                    Layout.fillWidth: true
                    text: parent.hint
                    wrapMode: Text.Wrap
                    color: palette.placeholderText
                }
            }
        }
        RowLayout {
            BusyIndicator {
                running: Shell.accountSettings.isProbing
                visible: running
                implicitWidth: 24
                implicitHeight: 24
            }
            Button {
                objectName: "probeButton"
                text: "Zugriffe messen"
                enabled: !Shell.accountSettings.isProbing
                onClicked: Shell.accountSettings.probe()
            }
        }
    }
}
