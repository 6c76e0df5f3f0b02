#include "bench/orv/packages.h"

#include <QHash>
#include <QObject>
#include <QVariant>
#include <algorithm>

using orv::tool::Damage;
using orv::tool::StanzaReader;

class QtPackage : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    void setSize(qlonglong size) {
        setProperty("Installed-Size", size);
        emit sizeChanged();
    }
signals:
    void sizeChanged();
};

class QtSection : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    qlonglong total() const { return sum; }
public slots:
    void resum() {
        qlonglong size = 0;
        for (const QObject* child : children()) {
            auto section = qobject_cast<const QtSection*>(child);
            size += section ? section->sum : child->property("Installed-Size").toLongLong();
        }
        if (size == sum) return;
        sum = size;
        emit totalChanged();
    }
signals:
    void totalChanged();

private:
    qlonglong sum = 0;
};

namespace {

struct Kept {
    QtSection root;
    QHash<QString, QtSection*> sections;
    QHash<QString, QtPackage*> packages;
};
Kept* kept = nullptr;

QString string(std::string_view text) { return QString::fromUtf8(text.data(), int(text.size())); }

} // namespace

PackageFigures loadQtPackages(const std::string& text) {
    kept = new Kept;
    size_t at = 0;
    StanzaReader reader(sourceOf(text, at), [](const Damage&) {});
    std::vector<StanzaReader::Field> fields;
    QHash<QByteArray, QByteArray> names; // as ours keep them
    while (reader.next(fields)) {
        QString name, architecture, version, section = "none";
        for (const auto& field : fields) {
            if (field.name == "Package") name = string(field.value);
            if (field.name == "Architecture") architecture = string(field.value);
            if (field.name == "Version") version = string(field.value);
            if (field.name == "Section") section = string(field.value);
        }
        const QString key = name + ":" + architecture + "=" + version;
        if (kept->packages.contains(key)) continue;
        QtSection*& parent = kept->sections[section];
        if (!parent) {
            parent = new QtSection(&kept->root);
            parent->setObjectName(section);
        }
        auto package = new QtPackage(parent);
        package->setObjectName(name);
        for (const auto& field : fields) {
            const QByteArray raw = QByteArray::fromRawData(field.name.data(), int(field.name.size()));
            auto known = names.constFind(raw);
            if (known == names.constEnd()) {
                const QByteArray own(field.name.data(), int(field.name.size()));
                known = names.insert(own, own);
            }
            const bool number = field.name == "Installed-Size" || field.name == "Size";
            package->setProperty(known->constData(),
                                 number ? QVariant(string(field.value).toLongLong()) : QVariant(string(field.value)));
        }
        kept->packages.insert(key, package);
    }
    for (QtSection* section : kept->sections) {
        for (QObject* package : section->children())
            QObject::connect(static_cast<QtPackage*>(package), &QtPackage::sizeChanged, section, &QtSection::resum);
        section->resum();
        QObject::connect(section, &QtSection::totalChanged, &kept->root, &QtSection::resum);
    }
    kept->root.resum();
    return {kept->packages.size(), kept->root.total()};
}
void dropQtPackages() {
    delete kept;
    kept = nullptr;
}
#include "peerPackages.moc"
