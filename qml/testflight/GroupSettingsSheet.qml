pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The settings of one group.
Dialog {
    id: sheet
    objectName: "groupSettingsSheet"
    required property TestFlightViewModel model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 520, 520)
    visible: model.settingsGroupID !== ""
    closePolicy: Popup.CloseOnEscape
    title: model.settingsTitle
    onRejected: model.closeGroupSettings()

    ColumnLayout {
        anchors.fill: parent
        spacing: 6
        TextField {
            objectName: "settingsNameField"
            Layout.fillWidth: true
            enabled: !sheet.model.settingsIsInternal
            text: sheet.model.settingsName
            Accessible.name: "Name"
            onTextEdited: sheet.model.settingsName = text
        }
        CheckBox {
            objectName: "settingsPublicLinkBox"
            enabled: !sheet.model.settingsIsInternal
            text: "Öffentlicher Link"
            checked: sheet.model.settingsPublicLinkEnabled
            onToggled: sheet.model.settingsPublicLinkEnabled = checked
        }
        RowLayout {
            CheckBox {
                objectName: "settingsLimitBox"
                enabled: !sheet.model.settingsIsInternal
                text: "Tester über den Link begrenzen auf"
                checked: sheet.model.settingsLimitEnabled
                onToggled: sheet.model.settingsLimitEnabled = checked
            }
            SpinBox {
                objectName: "settingsLimitField"
                enabled: !sheet.model.settingsIsInternal && sheet.model.settingsLimitEnabled
                from: 1
                to: 10000
                editable: true
                value: sheet.model.settingsLimit
                Accessible.name: "Höchstzahl"
                onValueModified: sheet.model.settingsLimit = value
            }
        }
        CheckBox {
            objectName: "settingsFeedbackBox"
            text: "Feedback erlauben"
            checked: sheet.model.settingsFeedbackEnabled
            onToggled: sheet.model.settingsFeedbackEnabled = checked
        }
        CheckBox {
            objectName: "settingsSiliconMacBox"
            text: "iOS-Builds auf Macs mit Apple-Chip"
            checked: sheet.model.settingsSiliconMacBuilds
            onToggled: sheet.model.settingsSiliconMacBuilds = checked
        }
        Label {
            Layout.fillWidth: true
            text: sheet.model.settingsAllBuildsText
            color: palette.placeholderText
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.model.settingsNote
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.model.groupActionError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            Button {
                objectName: "cancelGroupSettingsButton"
                text: "Abbrechen"
                onClicked: sheet.model.closeGroupSettings()
            }
            Button {
                objectName: "saveGroupSettingsButton"
                text: "Sichern"
                enabled: !sheet.model.isSavingGroup
                onClicked: sheet.model.startSaveGroupSettings()
            }
        }
    }
}
