// SPDX-License-Identifier: MIT
#pragma once

#include "Choices.h"
#include "Require.h"
#include "myfs.h"

#include <QByteArrayList>

/// What myfs::path holds, as Qt's lists of byte arrays compute it.
struct PathModel {
    QByteArrayList components;
    bool absolute = false;
    bool windows = false;

    static PathModel parsed(const QByteArray& text, bool windows = false)
    {
        const QByteArray slashed = QByteArray(text).replace('\\', '/');
        PathModel model;
        model.windows = windows;
        model.components = slashed.split('/');
        model.components.removeAll(".");
        model.components.removeAll("");
        if (text.isEmpty())
            model.components << "";
        const bool drive = windows && text.mid(1, 1) == ":";
        const bool unc = windows && !drive && slashed.size() > 2 && slashed.startsWith("//");
        model.absolute = windows ? drive || unc : text.startsWith('/');
        if (unc)
            model.components.prepend("\\\\");
        return model;
    }

    QByteArray text() const { return text(windows); }
    QByteArray text(bool inWindowsStyle) const
    {
        if (components.isEmpty())
            return {};
        const bool unc = components.first() == "\\\\";
        const QByteArray head = unc ? "\\\\" : absolute && !inWindowsStyle ? "/" : "";
        return head + components.mid(unc ? 1 : 0).join(inWindowsStyle ? '\\' : '/');
    }

    void append(const PathModel& other)
    {
        if (components.isEmpty() || !other.absolute)
            components += QByteArrayList(other.components);
    }

    PathModel parent() const
    {
        PathModel model;
        model.absolute = absolute;
        model.components = components.mid(0, components.size() - 1);
        if (components.isEmpty() && !absolute)
            model.components << "..";
        return model;
    }

    PathModel component(int index) const
    {
        return components.isEmpty() ? PathModel() : parsed(components[index]);
    }

    static QByteArray beforeLastDot(const QByteArray& name)
    {
        return name.contains('.') ? name.left(name.lastIndexOf('.')) : name;
    }

    bool hasFilename() const
    {
        return !components.isEmpty() && components.last() != "\\\\" &&
               !components.last().contains(':');
    }

    PathModel filename() const
    {
        return hasFilename() ? component(components.size() - 1) : PathModel();
    }

    PathModel extension() const
    {
        const QByteArray name = filename().text();
        return name.contains('.') ? parsed(name.mid(name.lastIndexOf('.'))) : PathModel();
    }

    PathModel basename() const { return parsed(beforeLastDot(filename().text())); }

    void replaceExtension(const PathModel& extension)
    {
        if (!hasFilename())
            return;
        QByteArray& name = components.last();
        name = beforeLastDot(name);
        // Read after the removal, because the extension may be this path.
        const QByteArray added = extension.text(false);
        if (!added.isEmpty())
            name += (added.startsWith('.') ? "" : ".") + added;
    }

    int compare(const PathModel& other) const
    {
        const int common = qMin(components.size(), other.components.size());
        for (int i = 0; i < common; ++i) {
            if (components[i] != other.components[i])
                return components[i] < other.components[i] ? -1 : 1;
        }
        return qBound(-1, components.size() - other.components.size(), 1);
    }
};

/// A path and its model, which go through the same operations.
struct ModelledPath {
    myfs::path path;
    PathModel model;

    void set(const std::string& text, bool windows)
    {
        path.set(text, windows ? myfs::path::WINDOWS_PATH : myfs::path::POSIX_PATH);
        model = PathModel::parsed(QByteArray::fromStdString(text), windows);
    }

    void assign(const ModelledPath& other)
    {
        path = other.path;
        model = PathModel::parsed(other.model.text());
    }

    void append(const ModelledPath& other)
    {
        path.append(other.path);
        model.append(other.model);
    }

    void replaceExtension(const ModelledPath& extension)
    {
        path.replace_extension(extension.path);
        model.replaceExtension(extension.model);
    }

    void removeFilename()
    {
        path.remove_filename();
        if (!model.components.isEmpty())
            model = PathModel::parsed(model.parent().text());
    }

    void swap(ModelledPath& other)
    {
        path.swap(other.path);
        model.components.swap(other.model.components);
    }

    void clear()
    {
        path.clear();
        model.components.clear();
    }
};

inline void requireSame(const myfs::path& path, const PathModel& model)
{
    REQUIRE(path.size() == std::size_t(model.components.size()));
    REQUIRE(path.empty() == model.components.isEmpty());
    REQUIRE(path.is_absolute() == model.absolute);
    REQUIRE(path.string() == model.text().toStdString());
    REQUIRE(path.generic_string() == model.text(false).toStdString());
}

inline void requireSameQueries(const myfs::path& path, const PathModel& model)
{
    requireSame(path, model);
    requireSame(myfs::path(path), model);
    requireSame(path.parent_path(), model.parent());
    requireSame(path.root_name(), model.component(0));
    requireSame(path.leaf_name(), model.component(model.components.size() - 1));
    requireSame(path.filename(), model.filename());
    requireSame(path.extension(), model.extension());
    requireSame(path.basename(), model.basename());
}

/// Edits two paths as `choices` say, and requires that both follow their models.
inline void requirePathsFollowTheirModels(Choices choices)
{
    constexpr int mostLetters = 1000;
    constexpr std::size_t mostBytes = 20;
    ModelledPath paths[2];
    while (!choices.atEnd()) {
        ModelledPath& edited = paths[choices.below(2)];
        ModelledPath& other = paths[choices.below(2)];
        switch (choices.below(8)) {
        case 0:
            edited.assign(other);
            break;
        case 1:
            edited.append(other);
            break;
        case 2:
            edited.replaceExtension(other);
            break;
        case 3:
            edited.removeFilename();
            break;
        case 4:
            edited.swap(other);
            break;
        case 5:
            edited.clear();
            break;
        default:
            edited.set(choices.text(mostBytes, "//\\\\..:ab\xE4\xB8\xAD"), choices.below(2) == 1);
        }
        // A path appended to itself, or as its own extension, would otherwise grow without end.
        if (edited.model.text().size() > mostLetters)
            edited.clear();
        requireSameQueries(edited.path, edited.model);
        requireSameQueries(other.path, other.model);
        REQUIRE(edited.path.compare(other.path) == edited.model.compare(other.model));
        REQUIRE((edited.path < other.path) == (edited.model.compare(other.model) < 0));
    }
}
