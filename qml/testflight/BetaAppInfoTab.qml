pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The app's beta information per language: the languages on the left, the fields of the chosen
// one on the right, one save for every changed language.
RowLayout {
    id: tab
    required property TestFlightViewModel model
    readonly property BetaAppInfoViewModel info: model.appInfo
    spacing: 8

    ColumnLayout {
        Layout.fillHeight: true
        Layout.preferredWidth: 230
        Layout.maximumWidth: 300
        spacing: 4

        BusyIndicator {
            visible: tab.info.isLoading
            running: visible
        }
        ListView {
            id: languages
            objectName: "betaAppLanguageList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: tab.info.languages
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Sprachen"
            delegate: ItemDelegate {
                required property string localeCode
                required property string title
                required property bool isSelected
                required property string accessibleName
                objectName: "betaAppLanguage_" + localeCode
                width: languages.width
                text: title
                highlighted: isSelected
                Accessible.name: accessibleName
                onClicked: tab.info.selectLocale(localeCode)
            }
        }
        ComboBox {
            id: newLocale
            objectName: "betaAppNewLanguage"
            Layout.fillWidth: true
            model: tab.info.addableLocales
            textRole: "name"
            valueRole: "code"
            Accessible.name: "Neue Sprache"
        }
        Button {
            objectName: "betaAppAddLanguageButton"
            Layout.fillWidth: true
            text: "Sprache hinzufügen"
            enabled: newLocale.currentIndex >= 0
            onClicked: tab.info.addLanguage(newLocale.currentValue)
        }
    }

    ColumnLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: 6

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.info.loadError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.info.emptyText
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
        ScrollView {
            id: editor
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            contentWidth: availableWidth
            // A scroll bar that comes and goes would change the width, and with it the height.
            ScrollBar.vertical.policy: ScrollBar.AlwaysOn
            // Its size comes from the layout; wrapped texts inside must not feed back into it.
            implicitWidth: 300
            implicitHeight: 200

            ColumnLayout {
                width: editor.availableWidth - editor.ScrollBar.vertical.width - 4
                spacing: 10
                Repeater {
                    model: tab.info.fields
                    delegate: ColumnLayout {
                        id: field
                        required property string fieldKey
                        required property string label
                        required property string text
                        required property string countText
                        required property bool isOverLimit
                        required property bool multiline
                        required property string hint
                        Layout.fillWidth: true
                        spacing: 2

                        RowLayout {
                            Layout.fillWidth: true
                            Label {
                                Layout.fillWidth: true
                                text: field.label
                                font.bold: true
                            }
                            Label {
                                visible: text !== ""
                                text: field.countText
                                color: field.isOverLimit ? Theme.negative : palette.placeholderText
                            }
                        }
                        TextField {
                            Layout.fillWidth: true
                            visible: !field.multiline
                            objectName: field.multiline ? "" : "betaAppField_" + field.fieldKey
                            text: field.text
                            Accessible.name: field.label
                            onTextEdited: tab.info.setField(field.fieldKey, text)
                        }
                        ScrollView {
                            Layout.fillWidth: true
                            Layout.preferredHeight: 110
                            visible: field.multiline
                            clip: true
                            contentWidth: availableWidth
                            background: Rectangle {
                                color: area.palette.base
                                border.color: area.activeFocus ? area.palette.highlight : area.palette.mid
                                radius: 2
                            }
                            TextArea {
                                id: area
                                objectName: field.multiline ? "betaAppField_" + field.fieldKey : ""
                                text: field.multiline ? field.text : ""
                                wrapMode: TextEdit.Wrap
                                Accessible.name: field.label
                                // The model ignores a text it already has.
                                onTextChanged: if (field.multiline) tab.info.setField(field.fieldKey, text)
                            }
                        }
                        Label {
                            Layout.fillWidth: true
                            visible: text !== ""
                            text: field.hint
                            wrapMode: Text.Wrap
                            font.pixelSize: Theme.smallSize
                            color: palette.placeholderText
                        }
                    }
                }
            }
        }
        RowLayout {
            Button {
                objectName: "saveBetaAppInfoButton"
                text: "Sichern"
                highlighted: true
                enabled: tab.info.canSave
                onClicked: tab.info.save()
            }
            BusyIndicator {
                visible: tab.info.isSaving
                running: visible
                implicitWidth: 24
                implicitHeight: 24
            }
            Label {
                Layout.fillWidth: true
                text: tab.info.saveStatus
                color: tab.info.saveStatusIsError ? Theme.negative : Theme.positive
                wrapMode: Text.Wrap
            }
        }
    }
}
