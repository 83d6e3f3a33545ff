import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The store texts of the app: languages with what each lacks, the editor of the selected
// language with live findings and character counts, save, add and remove language.
Item {
    id: page
    required property var model

    ColumnLayout {
        id: languagesColumn
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: 230
        spacing: 6
        clip: true

        Label {
            Layout.fillWidth: true
            text: page.model.editableVersionString !== "" ? "Version " + page.model.editableVersionString + " · " + page.model.versionStateName : ""
            font.bold: true
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            text: page.model.matrixSummary
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
        ListView {
            id: languages
            objectName: "languageList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: page.model.locales
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Sprachen"
            delegate: ItemDelegate {
                id: language
                required property var modelData
                width: languages.width
                highlighted: modelData.isSelected
                Accessible.name: modelData.displayName + (modelData.hasDraft ? ", Entwurf" : "") + (modelData.lacks !== "" ? ", " + modelData.lacks : "")
                onClicked: page.model.selectLocale(modelData.locale)
                contentItem: ColumnLayout {
                    spacing: 0
                    Label {
                        Layout.fillWidth: true
                        text: language.modelData.displayName + (language.modelData.hasDraft ? "  ✎" : "")
                        elide: Text.ElideRight
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: language.modelData.lacks
                        font.pixelSize: 11
                        color: "#7a5a00"
                        elide: Text.ElideRight
                    }
                }
            }
        }
        RowLayout {
            Button {
                text: "Sprache hinzufügen …"
                enabled: !page.model.isChangingLanguages
                onClicked: page.model.beginAddingLanguage()
            }
            Button {
                objectName: "removeLanguageButton"
                text: "Entfernen …"
                enabled: page.model.selectedLocale !== "" && !page.model.isChangingLanguages
                onClicked: page.model.requestDeleteLanguage(page.model.selectedLocale)
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            visible: page.model.isAddingLanguage
            ComboBox {
                id: newLocale
                Layout.fillWidth: true
                model: page.model.addableLocales
                textRole: "name"
                valueRole: "code"
                Accessible.name: "Neue Sprache"
            }
            ComboBox {
                id: seedLocale
                Layout.fillWidth: true
                model: page.model.seedLocales
                textRole: "name"
                valueRole: "code"
                Accessible.name: "Texte übernehmen aus"
            }
            Button {
                text: "Hinzufügen"
                enabled: newLocale.currentIndex >= 0 && !page.model.isChangingLanguages
                onClicked: {
                    page.model.newLanguageLocale = newLocale.currentValue
                    page.model.newLanguageSeedLocale = seedLocale.currentValue || ""
                    page.model.startAddLanguage()
                }
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.languageError
            color: "#8a1c1c"
            wrapMode: Text.Wrap
        }
    }

    ToolSeparator {
        id: separator
        anchors.left: languagesColumn.right
        anchors.leftMargin: 6
        anchors.top: parent.top
        anchors.bottom: parent.bottom
    }

    ColumnLayout {
        anchors.left: separator.right
        anchors.leftMargin: 6
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        spacing: 6

        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.loadError
            color: "#8a1c1c"
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.restrictedFieldsHint
            color: "#7a5a00"
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.restoredDraftText
            color: palette.placeholderText
            elide: Text.ElideRight
        }
        BusyIndicator {
            visible: page.model.isLoading
            running: visible
        }

        ScrollView {
            id: editor
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            contentWidth: availableWidth
            // A scroll bar that comes and goes would change the width, and with it the height.
            ScrollBar.vertical.policy: ScrollBar.AlwaysOn

            ColumnLayout {
                width: editor.availableWidth
                spacing: 10
                Repeater {
                    model: page.model.fields
                    delegate: MetadataFieldEditor {
                        required property var modelData
                        Layout.fillWidth: true
                        field: modelData
                        onEdited: text => page.model.setField(modelData.key, text)
                    }
                }
                Repeater {
                    model: page.model.crossLocaleFindings
                    delegate: Label {
                        required property var modelData
                        Layout.fillWidth: true
                        text: "⚠ " + modelData.message
                        color: "#7a5a00"
                        wrapMode: Text.Wrap
                    }
                }
            }
        }

        RowLayout {
            Button {
                objectName: "saveMetadataButton"
                text: "Sichern"
                highlighted: true
                enabled: page.model.hasUnsavedChanges && !page.model.isSaving
                onClicked: page.model.startSave()
            }
            BusyIndicator {
                visible: page.model.isSaving
                running: visible
                implicitWidth: 24
                implicitHeight: 24
            }
            Label {
                Layout.fillWidth: true
                text: page.model.saveError !== "" ? page.model.saveError : page.model.saveMessage
                color: page.model.saveError !== "" ? "#8a1c1c" : "#1d6b2a"
                wrapMode: Text.Wrap
            }
        }
    }
}
