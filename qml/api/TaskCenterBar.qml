pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// Long-running work with its progress; nothing while there is none.
Pane {
    id: bar
    objectName: "taskCenterBar"
    visible: Shell.taskList.count > 0
    padding: 6

    ColumnLayout {
        anchors.fill: parent
        Repeater {
            model: Shell.taskList
            delegate: RowLayout {
                required property string taskId
                required property string title
                required property string detail
                required property double progress
                required property bool hasProgress
                required property bool isCancellable
                required property string accessibilityLabel
                Layout.fillWidth: true
                Accessible.name: accessibilityLabel
                ProgressBar {
                    Layout.preferredWidth: 160
                    indeterminate: !parent.hasProgress
                    value: parent.progress
                }
                Label {
                    text: parent.title
                    font.bold: true
                }
                Label {
                    Layout.fillWidth: true
                    text: parent.detail
                    elide: Text.ElideRight
                }
                Button {
                    visible: parent.isCancellable
                    text: "Abbrechen"
                    onClicked: Shell.taskList.cancel(parent.taskId)
                }
            }
        }
    }
}
