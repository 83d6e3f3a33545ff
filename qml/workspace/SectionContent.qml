pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The screen of the open section, or a calm placeholder. The page comes from the section
// registry with its model; it is replaced only when the host says the section or app changed.
Pane {
    id: content
    required property SectionHost host

    function showPage() {
        if (content.host.hasPage)
            pageLoader.setSource(content.host.page, { "model": content.host.sectionModel })
        else
            pageLoader.source = ""
    }

    Component.onCompleted: showPage()

    Connections {
        target: content.host
        function onPageChanged() { content.showPage() }
    }

    Label {
        anchors.centerIn: parent
        visible: !content.host.hasApp
        text: content.host.noAppText
        color: palette.placeholderText
    }

    ColumnLayout {
        anchors.fill: parent
        visible: content.host.hasApp
        spacing: 12

        Label {
            Layout.fillWidth: true
            text: content.host.title
            font.pixelSize: Theme.titleSize
            font.bold: true
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
        // A plain item between the layout and the page: the page takes the space it is given,
        // and its own size wishes never feed back into the layout.
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: content.host.isBuilt
            Loader {
                id: pageLoader
                anchors.fill: parent
            }
        }
        Label {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !content.host.isBuilt
            text: content.host.emptyText
            wrapMode: Text.Wrap
            verticalAlignment: Text.AlignTop
            color: palette.placeholderText
        }
    }
}
