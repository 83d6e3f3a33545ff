pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The store texts of the app: languages with what each lacks, the editor of the selected
// language with live findings and character counts, save, add and remove language.
Item {
    id: page
    required property MetadataViewModel model

    SplitView {
        anchors.fill: parent
        orientation: Qt.Horizontal

        ColumnLayout {
            id: languagesColumn
            // The editor shares the window with the app list and the sidebar; the languages give
            // way first and can be dragged wider.
            SplitView.preferredWidth: Math.min(230, page.width * 0.4)
            SplitView.minimumWidth: 150
            SplitView.maximumWidth: 360
            spacing: 6
            clip: true

            Label {
                Layout.fillWidth: true
                Layout.rightMargin: 6
                visible: text !== ""
                text: page.model.versionHeading
                font.bold: true
                wrapMode: Text.WordWrap
            }
            Label {
                Layout.fillWidth: true
                Layout.rightMargin: 6
                visible: text !== ""
                text: page.model.matrixSummary
                wrapMode: Text.WordWrap
                color: palette.placeholderText
            }
            ListView {
                id: languages
                objectName: "languageList"
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: page.model.languages
                activeFocusOnTab: true
                keyNavigationEnabled: true
                Accessible.name: "Sprachen"
                delegate: ItemDelegate {
                    id: language
                    required property string localeCode
                    required property string title
                    required property string lacks
                    required property bool isSelected
                    required property string accessibleName
                    objectName: "language_" + localeCode
                    width: languages.width
                    highlighted: isSelected
                    Accessible.name: accessibleName
                    onClicked: page.model.selectLocale(localeCode)
                    contentItem: ColumnLayout {
                        spacing: 0
                        Label {
                            Layout.fillWidth: true
                            text: language.title
                            elide: Text.ElideRight
                        }
                        Label {
                            Layout.fillWidth: true
                            visible: text !== ""
                            text: language.lacks
                            font.pixelSize: Theme.captionSize
                            color: Theme.caution
                            elide: Text.ElideRight
                        }
                    }
                }
            }
            Button {
                Layout.fillWidth: true
                Layout.rightMargin: 6
                text: "Sprache hinzufügen …"
                enabled: page.model.canChangeLanguages
                onClicked: page.model.beginAddingLanguage()
            }
            Button {
                Layout.fillWidth: true
                Layout.rightMargin: 6
                objectName: "removeLanguageButton"
                text: "Entfernen …"
                enabled: page.model.canRemoveLanguage
                onClicked: page.model.requestDeleteLanguage(page.model.selectedLocale)
            }
            ColumnLayout {
                Layout.fillWidth: true
                Layout.rightMargin: 6
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
                    Layout.fillWidth: true
                    text: "Hinzufügen"
                    enabled: newLocale.currentIndex >= 0 && page.model.canChangeLanguages
                    onClicked: page.model.startAddLanguage(newLocale.currentValue, seedLocale.currentValue)
                }
            }
            Label {
                Layout.fillWidth: true
                Layout.rightMargin: 6
                visible: text !== ""
                text: page.model.languageError
                color: Theme.negative
                wrapMode: Text.WordWrap
            }
        }

        ColumnLayout {
            SplitView.fillWidth: true
            SplitView.minimumWidth: 200
            spacing: 6

            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 6
                visible: page.model.loadError !== ""
                Label {
                    Layout.fillWidth: true
                    text: page.model.loadError
                    color: Theme.negative
                    wrapMode: Text.WordWrap
                }
                Button {
                    objectName: "retryStoreTextsButton"
                    text: "Erneut versuchen"
                    enabled: !page.model.isLoading
                    onClicked: page.model.reload()
                }
            }
            Label {
                Layout.fillWidth: true
                Layout.leftMargin: 6
                visible: text !== ""
                text: page.model.restrictedFieldsHint
                color: Theme.caution
                wrapMode: Text.WordWrap
            }
            Label {
                Layout.fillWidth: true
                Layout.leftMargin: 6
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
                    x: 6
                    // The scroll bar lies over the content; the fields end before it.
                    width: editor.availableWidth - x - editor.ScrollBar.vertical.width - 4
                    spacing: 10
                    Repeater {
                        model: page.model.fields
                        delegate: MetadataFieldEditor {
                            id: field
                            Layout.fillWidth: true
                            onEdited: text => page.model.setField(field.fieldKey, text)
                        }
                    }
                    Repeater {
                        model: page.model.crossLocaleFindings
                        delegate: Label {
                            required property string message
                            Layout.fillWidth: true
                            text: message
                            color: Theme.caution
                            wrapMode: Text.WordWrap
                        }
                    }
                }
            }

            RowLayout {
                Layout.leftMargin: 6
                Button {
                    objectName: "saveMetadataButton"
                    text: "Sichern"
                    highlighted: true
                    enabled: page.model.canSave
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
                    text: page.model.saveStatus
                    color: page.model.saveStatusIsError ? Theme.negative : Theme.positive
                    wrapMode: Text.WordWrap
                }
            }
        }
    }
}
