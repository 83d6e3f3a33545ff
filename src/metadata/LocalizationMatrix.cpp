#include "metadata/LocalizationMatrix.h"

#include "metadata/AppStoreLocales.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using State = LocalizationMatrix::CellState;

void describeTextCell(LocalizationMatrix::Cell& cell, const QList<MetadataFinding>& findings,
                      const QString& text) {
    if (findings.isEmpty()) {
        cell.state = State::Complete;
        return;
    }
    const bool hasText = !text.trimmed().isEmpty();
    const auto confirmed = std::find_if(findings.cbegin(), findings.cend(), [](const MetadataFinding& f) {
        return f.severity == ReleaseCheckSeverity::Confirmed;
    });
    if (confirmed != findings.cend()) {
        cell.detail = confirmed->title;
        cell.state = hasText ? State::Warning : State::Missing;
    } else {
        // Only advice: an empty optional field is not something the language lacks.
        cell.detail = findings.first().title;
        cell.state = hasText ? State::Warning : State::Optional;
    }
}

void describeScreenshotCell(LocalizationMatrix::Cell& cell, const ScreenshotSummary* summary) {
    if (!summary) {
        cell.state = State::Unknown;
    } else if (summary->isUnavailable) {
        cell.state = State::Unknown;
        cell.detail = u"Nicht geladen"_s;
    } else if (summary->setCount == 0) {
        cell.state = State::Missing;
        cell.detail = u"Keine Screenshot-Gruppe"_s;
    } else if (summary->setCount == summary->filledSetCount) {
        cell.state = State::Complete;
        cell.detail = u"%1 in %2 %3"_s.arg(summary->totalScreenshots)
                          .arg(summary->setCount)
                          .arg(summary->setCount == 1 ? u"Gruppe"_s : u"Gruppen"_s);
    } else {
        cell.state = State::Warning;
        cell.detail = u"%1 von %2 Gruppen gefüllt"_s.arg(summary->filledSetCount).arg(summary->setCount);
    }
}

} // namespace

bool LocalizationMatrix::Row::isIncomplete() const {
    return std::any_of(cells.cbegin(), cells.cend(),
                       [](const Cell& c) { return c.state == State::Warning || c.state == State::Missing; });
}

const QList<LocalizationMatrix::Column>& LocalizationMatrix::columns() {
    static const QList<Column> table{
        {u"name"_s, u"Name"_s, MetadataField::Name, SidebarSection::AppStoreOptimization},
        {u"subtitle"_s, u"Untertitel"_s, MetadataField::Subtitle, SidebarSection::AppStoreOptimization},
        {u"description"_s, u"Beschreibung"_s, MetadataField::Description, SidebarSection::AppInformation},
        {u"keywords"_s, u"Keywords"_s, MetadataField::Keywords, SidebarSection::AppStoreOptimization},
        {u"whatsNew"_s, u"Neues"_s, MetadataField::WhatsNew, SidebarSection::AppInformation},
        {u"screenshots"_s, u"Screenshots"_s, std::nullopt, SidebarSection::Screenshots},
    };
    return table;
}

LocalizationMatrix LocalizationMatrix::make(const QList<ManagedLocalization>& localizations,
                                            const MetadataValidator::Context& context,
                                            const std::optional<QString>& primaryLocale,
                                            const QHash<QString, ScreenshotSummary>& screenshots,
                                            const MetadataValidator& validator) {
    QList<ManagedLocalization> sorted = localizations;
    std::stable_sort(
        sorted.begin(), sorted.end(),
        [](const ManagedLocalization& a, const ManagedLocalization& b) { return a.locale < b.locale; });

    LocalizationMatrix matrix;
    for (const ManagedLocalization& l : std::as_const(sorted)) {
        const MetadataValidationResult result = validator.validate(l, context);
        Row row{l.locale,
                l.locale,
                AppStoreLocales::displayName(l.locale),
                primaryLocale.has_value() && *primaryLocale == l.locale,
                {}};
        for (const Column& column : columns()) {
            Cell cell;
            cell.id = l.locale + u'.' + column.id;
            cell.columnID = column.id;
            cell.section = column.section;
            cell.locale = l.locale;
            if (column.field) {
                describeTextCell(cell, result.findingsFor(*column.field),
                                 MetadataFields::text(l, *column.field));
            } else {
                const auto it = screenshots.constFind(l.locale);
                describeScreenshotCell(cell, it == screenshots.cend() ? nullptr : &it.value());
            }
            row.cells.append(std::move(cell));
        }
        matrix.rows.append(std::move(row));
    }
    return matrix;
}

QList<LocalizationMatrix::Row> LocalizationMatrix::incompleteRows() const {
    QList<Row> result;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(result),
                 [](const Row& r) { return r.isIncomplete(); });
    return result;
}

QString LocalizationMatrix::summaryText() const {
    if (rows.isEmpty()) {
        return u"Keine Lokalisierungen gefunden"_s;
    }
    const qsizetype incomplete = incompleteRows().size();
    if (incomplete == 0) {
        return u"Alle %1 Sprachen sind vollständig."_s.arg(rows.size());
    }
    return u"%1 von %2 Sprachen brauchen noch etwas"_s.arg(incomplete).arg(rows.size());
}
