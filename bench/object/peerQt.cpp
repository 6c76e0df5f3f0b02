#include "bench/object/peers.h"

#include <QMetaEnum>
#include <QMetaProperty>
#include <QObject>
#include <QVariant>
#include <memory>
#include <string>

// Not in an anonymous namespace: the code that moc makes names these classes.

class PeerShape : public QObject {
    Q_OBJECT
    Q_PROPERTY(int x READ x WRITE setX)
    Q_PROPERTY(int y READ y WRITE setY)
    Q_PROPERTY(int width READ width WRITE setWidth)
    Q_PROPERTY(int height READ height WRITE setHeight)
    Q_PROPERTY(double opacity READ opacity WRITE setOpacity)
    Q_PROPERTY(double angle READ angle WRITE setAngle)
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(bool visible READ visible WRITE setVisible)

public:
    enum Style {
        Bold = 1,
        Italic = 2,
        Underline = 4,
        Strike = 8,
        Overline = 16,
        Outline = 32,
        Shadow = 64,
        Small = 128
    };
    Q_DECLARE_FLAGS(Styles, Style)
    Q_FLAG(Styles)

    int x() const { return box[0]; }
    int y() const { return box[1]; }
    int width() const { return box[2]; }
    int height() const { return box[3]; }
    double opacity() const { return shade; }
    double angle() const { return turn; }
    QString name() const { return title; }
    bool visible() const { return shown; }
    void setX(int value) { box[0] = value; }
    void setY(int value) { box[1] = value; }
    void setWidth(int value) { box[2] = value; }
    void setHeight(int value) { box[3] = value; }
    void setOpacity(double value) { shade = value; }
    void setAngle(double value) { turn = value; }
    void setName(const QString& value) { title = value; }
    void setVisible(bool value) { shown = value; }

    Q_INVOKABLE int subtract(int a, int b) { return a - b; }
    Q_INVOKABLE double scale(double factor) { return factor * 2; }
    Q_INVOKABLE int add(int a, int b) { return a + b; }
    Q_INVOKABLE void clear() {}
    Q_INVOKABLE int sum() const { return 0; }

private:
    int box[4] = {};
    double shade = 1, turn = 0;
    QString title;
    bool shown = true;
};

#define PEER_FIVE(A, B, C, D, E)                                                                                       \
    Q_PROPERTY(int A READ value)                                                                                       \
    Q_PROPERTY(int B READ value)                                                                                       \
    Q_PROPERTY(int C READ value)                                                                                       \
    Q_PROPERTY(int D READ value)                                                                                       \
    Q_PROPERTY(int E READ value)

class PeerTable : public QObject {
    Q_OBJECT
    PEER_FIVE(a0, a1, a2, a3, a4)
    PEER_FIVE(b0, b1, b2, b3, b4)
    PEER_FIVE(c0, c1, c2, c3, c4)
    PEER_FIVE(d0, d1, d2, d3, d4)
    PEER_FIVE(e0, e1, e2, e3, e4)
    PEER_FIVE(f0, f1, f2, f3, f4)
    PEER_FIVE(g0, g1, g2, g3, g4)
    PEER_FIVE(h0, h1, h2, h3, h4)
    PEER_FIVE(i0, i1, i2, i3, i4)
    PEER_FIVE(j0, j1, j2, j3, j4)

public:
    int value() const { return number; }
    int number = 0;
};

class PeerBell : public QObject {
    Q_OBJECT
public:
    int rung = 0;
    void strike() { emit struck(); }
signals:
    void struck();
public slots:
    void ring() { ++rung; }
};

namespace {

template <int count> void fire(benchmark::State& state) {
    PeerBell source, to[count + 1];
    for (int i = 0; i < count; ++i) QObject::connect(&source, &PeerBell::struck, &to[i], &PeerBell::ring);
    source.strike();
    for (int i = 0; i < count; ++i)
        if (to[i].rung != 1) state.SkipWithError("not called");
    for (auto _ : state) source.strike();
}
void connect(benchmark::State& state) {
    PeerBell source, to;
    QObject::connect(&source, SIGNAL(struck()), &to, SLOT(ring()));
    source.strike();
    if (!QObject::disconnect(&source, SIGNAL(struck()), &to, SLOT(ring())) || to.rung != 1)
        state.SkipWithError("not connected");
    for (auto _ : state) {
        QObject::connect(&source, SIGNAL(struck()), &to, SLOT(ring()));
        benchmark::DoNotOptimize(QObject::disconnect(&source, SIGNAL(struck()), &to, SLOT(ring())));
    }
}

void propertyGet(benchmark::State& state) {
    PeerShape shape;
    shape.setX(3);
    shape.setWidth(640);
    if (shape.property("width").toInt() != 640 || shape.property("x").toInt() != 3) state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(shape.property("width").toInt());
}

void propertySet(benchmark::State& state) {
    PeerShape shape;
    if (!shape.setProperty("width", 480) || shape.width() != 480 || shape.x()) state.SkipWithError("wrong value");
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(shape.setProperty("width", i++));
    if (shape.width() != i - 1) state.SkipWithError("wrong value at the end");
}

std::unique_ptr<PeerShape> withNotes(benchmark::State& state) {
    auto shape = std::make_unique<PeerShape>();
    for (int i = 0; i < 8; ++i) shape->setProperty(("note" + std::to_string(i)).c_str(), i * 11);
    if (shape->dynamicPropertyNames().size() != 8 || shape->property("note5").toInt() != 55)
        state.SkipWithError("wrong value");
    return shape;
}

void dynamicGet(benchmark::State& state) {
    auto shape = withNotes(state);
    for (auto _ : state) benchmark::DoNotOptimize(shape->property("note5").toInt());
}

void dynamicSet(benchmark::State& state) {
    auto shape = withNotes(state);
    int i = 100;
    for (auto _ : state) benchmark::DoNotOptimize(shape->setProperty("note5", i++));
    if (shape->property("note5").toInt() != i - 1 || shape->property("note4").toInt() != 44)
        state.SkipWithError("wrong value at the end");
}

void invoke(benchmark::State& state) {
    PeerShape shape;
    auto add = [&](int a, int b) {
        int result = 0;
        bool called = QMetaObject::invokeMethod(&shape, "add", Qt::DirectConnection, Q_RETURN_ARG(int, result),
                                                Q_ARG(int, a), Q_ARG(int, b));
        return called ? result : -1;
    };
    if (add(3, 4) != 7 || add(-9, 4) != -5) state.SkipWithError("wrong result");
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(add(i++, 5));
}

void typeFromName(benchmark::State& state) {
    static bool registered = false;
    for (int i = 0; !registered && i < peers::typeCount; ++i)
        QMetaType::registerNormalizedType(
            peers::typeName(i), [](void*) {},
            [](void* where, const void* from) -> void* {
                return new (where) int(from ? *static_cast<const int*>(from) : 0);
            },
            sizeof(int), QMetaType::MovableType, nullptr);
    registered = true;
    for (int i = 0; i < peers::typeCount; ++i)
        if (qstrcmp(QMetaType::typeName(QMetaType::type(peers::typeName(i))), peers::typeName(i)))
            state.SkipWithError("wrong type");
    if (QMetaType::type("DesignShape500")) state.SkipWithError("a type that isn't there");
    const char* names[peers::typeCount];
    for (int i = 0; i < peers::typeCount; ++i) names[i] = peers::typeName(i);
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(QMetaType::type(names[next]));
        next = (next + peers::stride) % peers::typeCount;
    }
}

void create(benchmark::State& state) {
    {
        int ended = 0;
        QObject* object = new QObject;
        QObject::connect(object, &QObject::destroyed, [&] { ++ended; });
        delete object;
        if (ended != 1) state.SkipWithError("didn't end");
    }
    for (auto _ : state) {
        QObject* object = new QObject;
        benchmark::DoNotOptimize(object);
        delete object;
    }
}

void childByName(benchmark::State& state) {
    QObject parent;
    QString names[peers::childCount];
    for (int i = 0; i < peers::childCount; ++i) {
        auto child = new QObject(&parent);
        child->setObjectName(peers::childName(i));
        names[i] = peers::childName(i);
    }
    for (int i = 0; i < peers::childCount; ++i)
        if (parent.findChild<QObject*>(names[i]) != parent.children()[i]) state.SkipWithError("wrong child");
    if (parent.findChild<QObject*>("layer1000")) state.SkipWithError("a child that isn't there");
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(parent.findChild<QObject*>(names[next]));
        next = (next + peers::stride) % peers::childCount;
    }
}

void readAll(benchmark::State& state) {
    PeerTable table;
    table.number = 3;
    auto sum = [&] {
        const QMetaObject* meta = table.metaObject();
        int sum = 0;
        for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
            sum += meta->property(i).read(&table).toInt();
        return sum;
    };
    if (sum() != 3 * peers::propertyCount) state.SkipWithError("wrong sum");
    for (auto _ : state) benchmark::DoNotOptimize(sum());
}

void enums(benchmark::State& state) {
    const QMetaEnum styles = QMetaEnum::fromType<PeerShape::Styles>();
    bool right = styles.keysToValue(peers::enumText) == (PeerShape::Bold | PeerShape::Italic | PeerShape::Overline) &&
                 styles.valueToKeys(styles.keysToValue(peers::enumText)) == peers::enumText && styles.keyCount() == 8;
    if (!right) state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(styles.valueToKeys(styles.keysToValue(peers::enumText)));
}

void runCopies(benchmark::State& state, const QVariant& value) {
    if (QVariant(value) != value || value.isNull()) state.SkipWithError("wrong copy");
    for (auto _ : state) {
        QVariant copy(value);
        benchmark::DoNotOptimize(copy);
    }
}
void copyInt(benchmark::State& state) { runCopies(state, QVariant(123456)); }
void copyText(benchmark::State& state) { runCopies(state, QVariant(QString(peers::copiedText))); }

void textToInt(benchmark::State& state) {
    const QVariant text(QString("123456"));
    bool known = false;
    if (text.toInt(&known) != 123456 || !known) state.SkipWithError("wrong number");
    for (auto _ : state) {
        benchmark::DoNotOptimize(text.toInt(&known));
        benchmark::DoNotOptimize(known);
    }
}

} // namespace

namespace peers::qt {
const BenchPair::Run propertyGet = ::propertyGet, propertySet = ::propertySet, dynamicGet = ::dynamicGet,
                     dynamicSet = ::dynamicSet, invoke = ::invoke, typeFromName = ::typeFromName, create = ::create,
                     childByName = ::childByName, readAll = ::readAll, enums = ::enums, copyInt = ::copyInt,
                     copyText = ::copyText, textToInt = ::textToInt, fire0 = ::fire<0>, fire1 = ::fire<1>,
                     fire10 = ::fire<10>, connect = ::connect;
} // namespace peers::qt

#include "peerQt.moc"
