pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// Screenshots and crashes that testers sent: the filter and the figures on top, the list on the
// left, the chosen item with its crash log on the right.
ColumnLayout {
    id: tab
    required property TestFlightViewModel model
    readonly property BetaFeedbackViewModel feedback: model.feedback
    spacing: 6

    RowLayout {
        Layout.fillWidth: true
        spacing: 4
        Repeater {
            model: tab.feedback.kinds
            delegate: Button {
                required property string kindKey
                required property string label
                required property bool isSelected
                objectName: "feedbackKind_" + kindKey
                text: label
                highlighted: isSelected
                Accessible.checkable: true
                Accessible.checked: isSelected
                onClicked: tab.feedback.selectKind(kindKey)
            }
        }
        Item {
            Layout.fillWidth: true
        }
        Repeater {
            model: tab.feedback.stats
            delegate: ColumnLayout {
                id: stat
                required property string label
                required property string value
                spacing: 0
                Label {
                    text: stat.value
                    font.bold: true
                    Layout.alignment: Qt.AlignHCenter
                }
                Label {
                    text: stat.label
                    font.pixelSize: Theme.captionSize
                    color: palette.placeholderText
                }
            }
        }
    }
    Label {
        Layout.fillWidth: true
        visible: tab.feedback.isLoading
        text: tab.feedback.loadingText
        color: palette.placeholderText
    }
    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.feedback.errorMessage
        color: Theme.negative
        wrapMode: Text.Wrap
    }
    ColumnLayout {
        Layout.fillWidth: true
        visible: tab.feedback.showsEmptyState
        Label {
            text: tab.feedback.emptyTitle
            font.pixelSize: Theme.headingSize
            font.bold: true
        }
        Label {
            Layout.fillWidth: true
            text: tab.feedback.emptyText
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: 8

        ListView {
            id: items
            objectName: "feedbackList"
            Layout.fillHeight: true
            Layout.preferredWidth: 320
            clip: true
            model: tab.feedback.items
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Rückmeldungen"
            delegate: ItemDelegate {
                id: item
                required property string feedbackId
                required property string kindLabel
                required property string dateText
                required property string comment
                required property string detailLine
                required property bool isSelected
                required property string accessibleName
                objectName: "feedback_" + feedbackId
                width: items.width
                highlighted: isSelected
                Accessible.name: accessibleName
                onClicked: tab.feedback.select(feedbackId)
                contentItem: ColumnLayout {
                    spacing: 0
                    RowLayout {
                        Label {
                            text: item.kindLabel
                            font.bold: true
                        }
                        Label {
                            Layout.fillWidth: true
                            text: item.dateText
                            color: palette.placeholderText
                            horizontalAlignment: Text.AlignRight
                        }
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: item.comment
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: item.detailLine
                        font.pixelSize: Theme.captionSize
                        color: palette.placeholderText
                        elide: Text.ElideRight
                    }
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 6
            Label {
                Layout.fillWidth: true
                objectName: "feedbackDetail"
                visible: text !== ""
                text: tab.feedback.selectedDetail
                wrapMode: Text.Wrap
            }
            Button {
                objectName: "openCrashLogButton"
                visible: tab.feedback.canOpenCrashLog || tab.feedback.isLoadingCrashLog
                enabled: tab.feedback.canOpenCrashLog
                text: "Absturzbericht anzeigen"
                onClicked: tab.feedback.startOpenCrashLog()
            }
            ScrollView {
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: tab.feedback.crashLogText !== ""
                clip: true
                TextArea {
                    objectName: "crashLogText"
                    readOnly: true
                    text: tab.feedback.crashLogText
                    font.family: "monospace"
                    Accessible.name: "Absturzbericht"
                }
            }
            Item {
                Layout.fillHeight: true
                visible: tab.feedback.crashLogText === ""
            }
        }
    }
}
