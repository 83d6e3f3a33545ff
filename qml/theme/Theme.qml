pragma Singleton
import QtQuick

// Colours and type sizes of every screen, in one place. Tones follow the models' status tones:
// neutral, positive, caution, negative, inProgress.
QtObject {
    readonly property color negative: "#8a1c1c"
    readonly property color caution: "#7a5a00"
    readonly property color positive: "#1d6b2a"
    readonly property color accent: "#1f5fa8"
    readonly property color bannerBackground: "#fff4d6"
    readonly property color bannerText: "#6b4e00"
    readonly property color negativeBackground: "#fde7e7"
    readonly property color noticeBackground: "#eef2f7"
    readonly property color noticeText: "#33475b"

    readonly property int captionSize: 11
    readonly property int smallSize: 12
    readonly property int bodySize: 13
    readonly property int symbolSize: 15
    readonly property int headingSize: 17
    readonly property int pageTitleSize: 20
    readonly property int titleSize: 22

    readonly property int spacing: 6
    readonly property int margin: 12

    // The colour of a status tone; neutral text keeps the palette's colour.
    function toneColor(tone, neutral) {
        switch (tone) {
        case "negative": return negative
        case "caution": return caution
        case "positive": return positive
        case "inProgress": return accent
        default: return neutral
        }
    }
}
