pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

Dialog {
    id: sheet
    objectName: "onboardingSheet"
    title: Shell.workspace.onboardingTitle
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 560, 560)
    visible: Shell.workspace.isOnboardingPresented
    footer: DialogButtonBox {
        Button {
            text: "Schließen"
            onClicked: sheet.close()
        }
    }
    onClosed: Shell.workspace.isOnboardingPresented = false

    ColumnLayout {
        anchors.fill: parent
        spacing: 10
        Repeater {
            model: Shell.workspace.onboardingSteps
            delegate: Label {
                required property string modelData
                Layout.fillWidth: true
                text: modelData
                wrapMode: Text.Wrap
            }
        }
    }
}
