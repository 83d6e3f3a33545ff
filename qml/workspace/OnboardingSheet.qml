import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

Dialog {
    id: sheet
    objectName: "onboardingSheet"
    title: workspace.onboardingTitle
    modal: true
    anchors.centerIn: parent
    width: Math.min(parent ? parent.width - 80 : 560, 560)
    visible: workspace.isOnboardingPresented
    standardButtons: Dialog.Close
    onClosed: workspace.isOnboardingPresented = false

    ColumnLayout {
        anchors.fill: parent
        spacing: 10
        Repeater {
            model: workspace.onboardingSteps
            delegate: Label {
                required property string modelData
                required property int index
                Layout.fillWidth: true
                text: (index + 1) + ". " + modelData
                wrapMode: Text.Wrap
            }
        }
    }
}
