#include "demo/tour/state_table.h"

#include "demo/tour/expected_state.h"

#include <QFileInfo>

#include <algorithm>

namespace quillmar::demo
{

using namespace Qt::StringLiterals;

namespace
{

QString pointText(QPointF point)
{
    return u"%1, %2"_s.arg(point.x()).arg(point.y());
}

QString sizeText(QSizeF size)
{
    return u"%1 × %2"_s.arg(size.width()).arg(size.height());
}

std::optional<test::ObsItem> itemOf(const test::ObsState &state, const QString &scene, const QString &source)
{
    const QList<test::ObsItem> items = state.items(scene);
    const auto found = std::find_if(items.cbegin(), items.cend(),
                                    [&](const test::ObsItem &item) { return item.source == source; });
    return found == items.cend() ? std::nullopt : std::optional(*found);
}

QString difference(const ExpectedInsertion &expected, const std::optional<test::ObsSource> &source,
                   const std::optional<test::ObsItem> &item)
{
    if (!source)
        return u"there is no such source"_s;
    if (source->id != expected.sourceId)
        return u"the source is of another type"_s;
    if (!QFileInfo(source->file()).isFile())
        return u"its file is missing"_s;
    if (!item)
        return u"the scene has no such item"_s;
    if (item->position != expected.position || item->bounds != expected.bounds)
        return u"expected at %1, %2"_s.arg(pointText(expected.position), sizeText(expected.bounds));
    if (item->boundsType != test::BoundsScaleInner || item->alignment != test::AlignLeftTop || !item->visible)
        return u"it is laid out in another way"_s;
    return {};
}

QString orderOf(const QList<test::ObsItem> &items)
{
    QStringList names;
    for (const test::ObsItem &item : items)
        names.append(item.source);
    return names.join(" < "_L1);
}

QString expectedOrder()
{
    QStringList names;
    for (const ExpectedInsertion &expected : expectedInsertions()) {
        if (expected.newScene.isEmpty())
            names.append(expected.source);
    }
    return names.join(" < "_L1);
}

} // namespace

StateTable StateTable::read(const test::ObsState &state, const QString &firstScene)
{
    StateTable table;
    for (const ExpectedInsertion &expected : expectedInsertions()) {
        const QString scene = expected.newScene.isEmpty() ? firstScene : expected.newScene;
        const std::optional<test::ObsSource> source = state.source(expected.source);
        const std::optional<test::ObsItem> item = itemOf(state, scene, expected.source);
        const QString wrong = difference(expected, source, item);
        table.rows.append({expected.component, expected.mode, source ? source->id : u"-"_s, expected.source,
                           scene, item ? pointText(item->position) : u"-"_s,
                           item ? sizeText(item->bounds) : u"-"_s, wrong.isEmpty() ? u"ok"_s : wrong});
        if (!wrong.isEmpty())
            table.differences.append(expected.source + u": "_s + wrong);
    }
    if (state.currentScene() != firstScene)
        table.differences.append(u"the current scene is another one now: "_s + state.currentScene());
    if (orderOf(state.items(firstScene)) != expectedOrder())
        table.differences.append(u"the items lie in another order: "_s + orderOf(state.items(firstScene)));
    return table;
}

QString StateTable::text() const
{
    const QStringList header{u"Component"_s, u"Mode"_s,     u"Source type"_s, u"Name in OBS"_s,
                             u"Scene"_s,     u"Position"_s, u"Size"_s,        u"Verdict"_s};
    const QList<QStringList> lines = QList<QStringList>{header} + rows;
    QList<qsizetype> widths(header.size(), 0);
    for (const QStringList &line : lines) {
        for (qsizetype column = 0; column < line.size(); ++column)
            widths[column] = std::max(widths[column], line[column].size());
    }
    QString text;
    for (const QStringList &line : lines) {
        for (qsizetype column = 0; column < line.size(); ++column)
            text += line[column].leftJustified(widths[column] + 2);
        text += u'\n';
    }
    return text;
}

} // namespace quillmar::demo
