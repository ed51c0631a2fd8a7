#pragma once

#include "Kestro/Platform/PreferenceStore.h"
#include "KestroCore/Support/RawString.h"

#include <algorithm>
#include <cmath>

namespace kestro {

/// How a type lies in the store. `from` gives nothing for what is absent or of another type.
template <class T> struct Stored;

template <> struct Stored<bool> {
    static std::optional<bool> from(const QVariant& value);
    static QVariant to(bool value) { return value; }
};
/// Whole numbers are stored as doubles; a fraction is cut off.
template <> struct Stored<int> {
    static std::optional<int> from(const QVariant& value);
    static QVariant to(int value) { return double(value); }
};
template <> struct Stored<double> {
    static std::optional<double> from(const QVariant& value);
    static QVariant to(double value) { return value; }
};
template <> struct Stored<QString> {
    static std::optional<QString> from(const QVariant& value);
    static QVariant to(const QString& value) { return value; }
};
template <> struct Stored<QByteArray> {
    static std::optional<QByteArray> from(const QVariant& value);
    static QVariant to(const QByteArray& value) { return value; }
};
/// Nothing unless every element is a string.
template <> struct Stored<QStringList> {
    static std::optional<QStringList> from(const QVariant& value);
    static QVariant to(const QStringList& value);
};
template <> struct Stored<QVariantMap> {
    static std::optional<QVariantMap> from(const QVariant& value);
    static QVariant to(const QVariantMap& value) { return value; }
};
template <RawEnum E> struct Stored<E> {
    static std::optional<E> from(const QVariant& value)
    {
        const auto raw = Stored<QString>::from(value);
        return raw ? fromRaw<E>(*raw) : std::nullopt;
    }
    static QVariant to(E value) { return rawValue(value); }
};

/// One setting: its key, what it is while nothing usable is stored, and what a stored value is brought to when read.
template <class T> struct Preference {
    QLatin1StringView key;
    T fallback{};
    T (*clamp)(T) = nullptr;

    T read(const PreferenceStore& store) const
    {
        const std::optional<T> stored = Stored<T>::from(store.value(key));
        if (!stored)
            return fallback;
        return clamp ? clamp(*stored) : *stored;
    }
    void write(PreferenceStore& store, const T& value) const { store.setValue(key, Stored<T>::to(value)); }
};

/// A setting whose absence means something of its own; writing nothing removes the key.
template <class T> struct Preference<std::optional<T>> {
    QLatin1StringView key;

    std::optional<T> read(const PreferenceStore& store) const { return Stored<T>::from(store.value(key)); }
    void write(PreferenceStore& store, const std::optional<T>& value) const
    {
        store.setValue(key, value ? Stored<T>::to(*value) : QVariant());
    }
};

/// The settings of a family whose keys are a common beginning and a member's raw string.
template <class T> struct PreferenceFamily {
    QLatin1StringView prefix;
    T fallback{};

    QString key(QStringView member) const { return prefix + member.toString(); }
    T read(const PreferenceStore& store, QStringView member) const
    {
        return Stored<T>::from(store.value(key(member))).value_or(fallback);
    }
    void write(PreferenceStore& store, QStringView member, const T& value) const
    {
        store.setValue(key(member), Stored<T>::to(value));
    }
};
template <class T> struct PreferenceFamily<std::optional<T>> {
    QLatin1StringView prefix;

    QString key(QStringView member) const { return prefix + member.toString(); }
    std::optional<T> read(const PreferenceStore& store, QStringView member) const
    {
        return Stored<T>::from(store.value(key(member)));
    }
    void write(PreferenceStore& store, QStringView member, const std::optional<T>& value) const
    {
        store.setValue(key(member), value ? Stored<T>::to(*value) : QVariant());
    }
};

} // namespace kestro
