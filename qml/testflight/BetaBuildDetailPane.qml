pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The chosen build: test notes per language, beta review and usage.
ScrollView {
    id: pane
    required property TestFlightViewModel model
    readonly property BetaBuildDetailViewModel detail: model.buildDetail
    clip: true
    contentWidth: availableWidth
    // A scroll bar that comes and goes would change the width, and with it the height.
    ScrollBar.vertical.policy: ScrollBar.AlwaysOn
    // Its size comes from the tab's layout; wrapped texts inside must not feed back into it.
    implicitWidth: 300
    implicitHeight: 200

    ColumnLayout {
        width: pane.availableWidth - pane.ScrollBar.vertical.width - 4
        spacing: 8

        Label {
            Layout.fillWidth: true
            visible: pane.detail.buildTitle === ""
            text: "Einen Build wählen, um Testhinweise, Beta-Prüfung und Nutzung zu sehen."
            color: palette.placeholderText
            wrapMode: Text.Wrap
        }
        Label {
            objectName: "buildDetailTitle"
            visible: text !== ""
            text: pane.detail.buildTitle
            font.pixelSize: Theme.headingSize
            font.bold: true
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: pane.detail.betaStateText
            wrapMode: Text.Wrap
        }
        BusyIndicator {
            visible: pane.detail.isLoading
            running: visible
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: pane.detail.loadError
            color: Theme.negative
            wrapMode: Text.Wrap
        }

        GroupBox {
            Layout.fillWidth: true
            visible: pane.detail.buildTitle !== ""
            title: "Testhinweise"
            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                spacing: 6
                Repeater {
                    model: pane.detail.localizations
                    delegate: ColumnLayout {
                        id: notes
                        required property string localeCode
                        required property string displayName
                        required property string text
                        required property string countText
                        required property bool isOverLimit
                        required property string accessibleName
                        Layout.fillWidth: true
                        spacing: 2
                        RowLayout {
                            Layout.fillWidth: true
                            Label {
                                Layout.fillWidth: true
                                text: notes.displayName
                                font.bold: true
                            }
                            Label {
                                text: notes.countText
                                color: notes.isOverLimit ? Theme.negative : palette.placeholderText
                            }
                        }
                        ScrollView {
                            Layout.fillWidth: true
                            Layout.preferredHeight: 90
                            clip: true
                            contentWidth: availableWidth
                            background: Rectangle {
                                color: area.palette.base
                                border.color: area.activeFocus ? area.palette.highlight : area.palette.mid
                                radius: 2
                            }
                            TextArea {
                                id: area
                                objectName: "testNotes_" + notes.localeCode
                                text: notes.text
                                wrapMode: TextEdit.Wrap
                                Accessible.name: notes.accessibleName
                                // The model ignores a text it already has.
                                onTextChanged: pane.detail.setTestNotes(notes.localeCode, text)
                            }
                        }
                    }
                }
                RowLayout {
                    Layout.fillWidth: true
                    ComboBox {
                        id: newLocale
                        Layout.fillWidth: true
                        model: pane.detail.addableLocales
                        textRole: "name"
                        valueRole: "code"
                        Accessible.name: "Neue Sprache"
                    }
                    Button {
                        text: "Sprache hinzufügen"
                        enabled: newLocale.currentIndex >= 0
                        onClicked: pane.detail.addLanguage(newLocale.currentValue)
                    }
                }
                RowLayout {
                    Button {
                        objectName: "saveTestNotesButton"
                        text: "Sichern"
                        highlighted: true
                        enabled: pane.detail.canSave
                        onClicked: pane.detail.save()
                    }
                    BusyIndicator {
                        visible: pane.detail.isSaving
                        running: visible
                        implicitWidth: 24
                        implicitHeight: 24
                    }
                    Label {
                        Layout.fillWidth: true
                        text: pane.detail.saveStatus
                        color: pane.detail.saveStatusIsError ? Theme.negative : Theme.positive
                        wrapMode: Text.Wrap
                    }
                }
            }
        }

        GroupBox {
            Layout.fillWidth: true
            visible: pane.detail.reviewText !== ""
            title: "Beta-Prüfung"
            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                Label {
                    Layout.fillWidth: true
                    objectName: "betaReviewText"
                    text: pane.detail.reviewText
                    wrapMode: Text.Wrap
                }
                Button {
                    objectName: "submitBetaReviewButton"
                    visible: pane.detail.canSubmitForReview
                    text: "Zur Beta-Prüfung einreichen"
                    onClicked: pane.detail.startSubmitForBetaReview()
                }
                Label {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: pane.detail.reviewStatus
                    color: pane.detail.reviewStatusIsError ? Theme.negative : Theme.positive
                    wrapMode: Text.Wrap
                }
            }
        }

        GroupBox {
            Layout.fillWidth: true
            visible: pane.detail.usageText !== ""
            title: "Nutzung"
            ColumnLayout {
                anchors.left: parent.left
                anchors.right: parent.right
                Repeater {
                    model: pane.detail.usage
                    delegate: RowLayout {
                        id: figure
                        required property string label
                        required property string value
                        Layout.fillWidth: true
                        Label {
                            Layout.fillWidth: true
                            text: figure.label
                        }
                        Label {
                            text: figure.value
                            font.bold: true
                        }
                    }
                }
                Label {
                    Layout.fillWidth: true
                    text: pane.detail.usageText
                    color: palette.placeholderText
                    wrapMode: Text.Wrap
                }
            }
        }
    }
}
