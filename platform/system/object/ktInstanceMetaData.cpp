#include "platform/system/object/ktInstanceMetaData.h"

#include "platform/system/stream/ktBaseStream.h"
#include "platform/system/variant/ktVariantBuilder_p.h"

#include <vector>

namespace kt {

namespace {

/// Reads a stored map. Nested maps and lists are kept on a stack of their own, so that the depth needs no call stack.
class MapReader {
public:
    explicit MapReader(ktBaseStream& stream) : mStream(stream) {}

    /// Reads a map whose count has been read.
    ktVariant read(std::uint32_t count) {
        mBuilder.beginMap();
        mMissing.push_back(count);
        if (!readAll()) {
            mStream.setStreamError(mFault);
            keepWholeEntries();
        }
        return mBuilder.take();
    }

private:
    /// Begins a map or list and reads its count; false when it is too deep or the count is missing.
    bool open(ktVariant::Kind kind) {
        if (mBuilder.getDepth() == static_cast<std::size_t>(sMaxVariantMapDepth)) {
            mFault = ktStreamFault::MetadataTooDeep;
            return false;
        }
        if (kind == ktVariant::Kind::Map) {
            mBuilder.beginMap();
        } else {
            mBuilder.beginList();
        }
        mMissing.push_back(0);
        return mStream.readle(4, 1, &mMissing.back());
    }

    void close() {
        mMissing.pop_back();
        mBuilder.end();
    }

    bool readAll() {
        for (;;) {
            if (mMissing.back() == 0) {
                close();
                if (mMissing.empty()) {
                    return true;
                }
                continue;
            }
            --mMissing.back();
            if (!readElement()) {
                return false;
            }
        }
    }

    bool readElement() {
        if (mBuilder.isInMap()) {
            mStream.chargeMemory(1, sizeof(ktVariant::ktVariantMapImpl::Entry));
            std::string_view key;
            if (!readText(key)) {
                return false;
            }
            mBuilder.addKey(key);
        } else {
            mStream.chargeMemory(1, sizeof(ktVariant));
        }
        return readValue();
    }

    bool readValue() {
        std::uint8_t kind = 0;
        if (!mStream.readByte(kind)) {
            return false;
        }
        switch (static_cast<ktVariant::Kind>(kind)) {
            case ktVariant::Kind::Undefined:
                mBuilder.addValue(ktVariant());
                return true;
            case ktVariant::Kind::Boolean:
                return readBoolean();
            case ktVariant::Kind::Integer:
                return readNumber<std::int64_t>();
            case ktVariant::Kind::String:
                return readString();
            case ktVariant::Kind::Real:
                return readNumber<double>();
            case ktVariant::Kind::Map:
            case ktVariant::Kind::List:
                return open(static_cast<ktVariant::Kind>(kind));
        }
        return false;
    }

    bool readBoolean() {
        std::uint8_t value = 0;
        if (!mStream.readByte(value)) {
            return false;
        }
        mBuilder.addValue(value != 0);
        return true;
    }

    template <typename Number>
    bool readNumber() {
        Number number = 0;
        if (!mStream.readle(sizeof(Number), 1, &number)) {
            return false;
        }
        mBuilder.addValue(number);
        return true;
    }

    bool readString() {
        std::string_view text;
        if (!readText(text)) {
            return false;
        }
        mBuilder.addValue(text);
        return true;
    }

    /// Reads a text in place; false when the stream holds less of it.
    bool readText(std::string_view& text) {
        std::int32_t length = 0;
        if (!mStream.readle(4, 1, &length)) {
            return false;
        }
        if (length < 1) {
            text = {};
            return true;
        }
        const auto size = static_cast<std::size_t>(length);
        if (size <= mStream.getRemaining()) {
            mStream.chargeMemory(size, 1);
        }
        const std::byte* bytes = mStream.readInPlace(size);
        if (bytes == nullptr) {
            return false;
        }
        text = {reinterpret_cast<const char*>(bytes), size};
        return true;
    }

    /// After an error: what is not complete goes, the outermost map ends with its whole entries.
    void keepWholeEntries() {
        while (mBuilder.getDepth() > 1) {
            mBuilder.drop();
        }
        mBuilder.dropLooseKey();
        mBuilder.end();
    }

    ktBaseStream& mStream;
    /// Unless a read was short, or a map lies too deep.
    ktStreamFault mFault = ktStreamFault::UnknownValueKind;
    impl::ktVariantBuilder mBuilder;
    std::vector<std::uint32_t> mMissing;  ///< elements yet to come, per open map or list
};

}  // namespace

void ktInstanceMetaData::LoadVariantMap(ktBaseStream& stream, ktVariant::ktVariantMapImpl& map) {
    std::uint32_t count = 0;
    stream.readle(4, 1, &count);
    if (count == 0) {
        // Most maps of a document are empty: no reader is made for them.
        map.clear();
        return;
    }
    map = std::move(*MapReader(stream).read(count).editMap());
}

}  // namespace kt
