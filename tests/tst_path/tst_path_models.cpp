// SPDX-License-Identifier: MIT
#include "BehaviourTest.h"
#include "StdText.h"
#include "myfs.h"

#include <QByteArrayList>
#include <QRandomGenerator>

using myfs::path;

// Random paths against a small model of their own: a list of byte arrays and two flags.

namespace
{

constexpr int kRounds = 20000;

struct Model {
    QByteArrayList components;
    bool absolute = false;
    bool windows = false;
};

Model parse(const QByteArray& text, bool windows)
{
    Model model;
    model.windows = windows;
    const QByteArray slashed = QByteArray(text).replace('\\', '/');
    if (text.isEmpty())
        model.components << QByteArray();
    for (const QByteArray& piece : slashed.split('/')) {
        if (!piece.isEmpty() && piece != ".")
            model.components << piece;
    }
    const bool unc = slashed.size() > 2 && slashed.startsWith("//");
    if (!windows) {
        model.absolute = text.startsWith('/');
    } else if (text.mid(1, 1) == ":") {
        model.absolute = true;
    } else if (unc) {
        model.absolute = true;
        model.components.prepend("\\\\");
    }
    return model;
}

QByteArray render(const Model& model, bool windows)
{
    if (model.components.isEmpty())
        return {};
    QByteArrayList rest = model.components;
    QByteArray head;
    if (rest.first() == "\\\\")
        head = rest.takeFirst();
    else if (model.absolute && !windows)
        head = "/";
    return head + rest.join(windows ? "\\" : "/");
}

Model parentOf(const Model& model)
{
    Model result;
    result.absolute = model.absolute;
    result.components = model.components.mid(0, model.components.size() - 1);
    if (model.components.isEmpty() && !model.absolute)
        result.components << "..";
    return result;
}

int compare(const Model& a, const Model& b)
{
    for (int i = 0; i < qMin(a.components.size(), b.components.size()); ++i) {
        if (a.components[i] != b.components[i])
            return a.components[i] < b.components[i] ? -1 : 1;
    }
    const int longer = a.components.size() - b.components.size();
    return longer == 0 ? 0 : (longer < 0 ? -1 : 1);
}

QByteArray randomText(QRandomGenerator& random)
{
    static const QByteArray alphabet = "//\\\\..:ab\xE4\xB8\xAD";
    QByteArray text;
    for (int i = random.bounded(12); i > 0; --i)
        text += alphabet[random.bounded(alphabet.size())];
    return text;
}

struct Pair {
    path actual;
    Model model;
};

Pair randomPair(QRandomGenerator& random)
{
    const QByteArray text = randomText(random);
    const bool windows = random.bounded(2) == 1;
    path p;
    p.set(text.toStdString(), windows ? path::WINDOWS_PATH : path::POSIX_PATH);
    return {p, parse(text, windows)};
}

void verifySame(const path& actual, const Model& model)
{
    QCOMPARE(int(actual.size()), model.components.size());
    QCOMPARE(actual.is_absolute(), model.absolute);
    QCOMPARE(actual.string(), render(model, model.windows).toStdString());
    QCOMPARE(actual.generic_string(), render(model, false).toStdString());
}

} // namespace

class tst_path_models : public BehaviourTest
{
    Q_OBJECT

private slots:
    void parsingAndRendering();
    void assigning();
    void appending();
    void parents();
    void comparing();
};

void tst_path_models::parsingAndRendering()
{
    QRandomGenerator random(1);
    for (int i = 0; i < kRounds && !QTest::currentTestFailed(); ++i) {
        const Pair pair = randomPair(random);
        verifySame(pair.actual, pair.model);
    }
}

void tst_path_models::assigning()
{
    QRandomGenerator random(2);
    for (int i = 0; i < kRounds && !QTest::currentTestFailed(); ++i) {
        const Pair pair = randomPair(random);
        path assigned;
        assigned = pair.actual;
        verifySame(assigned, parse(render(pair.model, pair.model.windows), false));
    }
}

void tst_path_models::appending()
{
    QRandomGenerator random(3);
    for (int i = 0; i < kRounds && !QTest::currentTestFailed(); ++i) {
        Pair base = randomPair(random);
        const Pair added = randomPair(random);
        base.actual.append(added.actual);
        if (base.model.components.isEmpty() || !added.model.absolute)
            base.model.components += added.model.components;
        verifySame(base.actual, base.model);
    }
}

void tst_path_models::parents()
{
    QRandomGenerator random(4);
    for (int i = 0; i < kRounds && !QTest::currentTestFailed(); ++i) {
        const Pair pair = randomPair(random);
        verifySame(pair.actual.parent_path(), parentOf(pair.model));
    }
}

void tst_path_models::comparing()
{
    QRandomGenerator random(5);
    for (int i = 0; i < kRounds && !QTest::currentTestFailed(); ++i) {
        const Pair a = randomPair(random);
        const Pair b = randomPair(random);
        QCOMPARE(a.actual.compare(b.actual), compare(a.model, b.model));
        QCOMPARE(a.actual < b.actual, compare(a.model, b.model) < 0);
    }
}

QTEST_APPLESS_MAIN(tst_path_models)
#include "tst_path_models.moc"
