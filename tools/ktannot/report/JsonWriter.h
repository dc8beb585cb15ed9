#pragma once

/// @file
/// JSON output.

#include "platform/system/variant/ktVariant.h"
#include "platform/wm4/Wm4Vector2.h"
#include "platform/wm4/Wm4Vector3.h"
#include "tools/ktannot/console/TextOutput.h"

#include <concepts>
#include <cstdint>
#include <string_view>
#include <vector>

namespace ktannot {

/// Writes JSON texts value by value, each on one line and pure UTF-8 whatever bytes come in. The caller keeps brackets
/// and keys in balance:
///
///     json.beginObject();
///     json.key("source").text(path);
///     json.key("views").beginArray();
///     ...
///     json.endArray();
///     json.endObject();
///     json.endLine();
class JsonWriter {
public:
    /// @param output  receives the text; must outlive the writer.
    explicit JsonWriter(TextOutput& output) : mOutput(output) {}

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }
    /// A value that is JSON already.
    void raw(std::string_view json) {
        separate();
        mOutput.write(json);
    }
    /// Ends a JSON text.
    void endLine();

    /// The key of the next value. A key that is not valid UTF-8 becomes "bytes:" and its hexadecimal form.
    JsonWriter& key(std::string_view name);

    /// A text; one that is not valid UTF-8 becomes {"bytes": "<lower-case hex>"}. Characters that could act on a
    /// terminal are written as escapes.
    void text(std::string_view bytes);
    /// The shortest decimal that reads back as the same float; "NaN", "Infinity" or "-Infinity" as texts.
    void number(float value);
    /// The shortest decimal that reads back as the same double; not finite as above.
    void number(double value);
    template <std::integral Integer>
    void number(Integer value) {
        if constexpr (std::signed_integral<Integer>) {
            writeInteger(static_cast<std::int64_t>(value));
        } else {
            writeInteger(static_cast<std::uint64_t>(value));
        }
    }
    void boolean(bool value);
    void null();
    void vector(const Wm4::Vector2<float>& value);
    void vector(const Wm4::Vector3<float>& value);
    /// Red, green and blue as integers.
    void color(const Wm4::Vector3<unsigned char>& value);
    /// A value with all that lies below it; undefined is null. Needs no stack in proportion to the nesting.
    void variant(const kt::ktVariant& value);
    void variant(const kt::ktVariant::ktVariantMapImpl& map);

private:
    /// Puts the separator before a value that follows another one.
    void separate() {
        if (mNeedsSeparator) {
            mOutput.write(", ");
        }
        mNeedsSeparator = true;
    }
    void open(char bracket) {
        separate();
        mOutput.write(bracket);
        mNeedsSeparator = false;
    }
    void close(char bracket) {
        mOutput.write(bracket);
        mNeedsSeparator = true;
    }
    void writeInteger(std::int64_t value);
    void writeInteger(std::uint64_t value);
    template <typename Real>
    void writeReal(Real value);
    void writeQuoted(std::string_view utf8);
    void writeHex(std::string_view bytes);
    void writeEscape(char32_t code);
    struct OpenContainer;
    void scalar(const kt::ktVariant& value);
    /// Writes the rest of maps and lists that lie within each other; their opening brackets are written already.
    void containers(std::vector<OpenContainer> path);

    TextOutput& mOutput;
    bool mNeedsSeparator = false;
};

}  // namespace ktannot
