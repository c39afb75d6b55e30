#include "read_dicom_elements.h"

#include "error.h"
#include "read_text.h"

#include <array>
#include <cctype>
#include <cstring>
#include <string_view>

namespace corvane::host
{
namespace
{
constexpr DicomTag kTransferSyntax = 0x00020010, kPixelData = 0x7fe00010;
constexpr DicomTag kItem = 0xfffee000, kItemEnd = 0xfffee00d, kSequenceEnd = 0xfffee0dd;
constexpr uint32_t kUndefinedLength = 0xffffffff;
constexpr uint64_t kMaxKeptValue = 1 << 16; // bytes
constexpr int kMaxDepth = 16;               // of sequences in sequences
constexpr std::string_view kBigEndianSyntax = "1.2.840.10008.1.2.2", kImplicitSyntax = "1.2.840.10008.1.2";

// Sequences that the implicit form does not mark as such, as far as headers of volumes need them.
bool IsKnownSequence(DicomTag tag)
{
    constexpr std::array<DicomTag, 6> kSequences = {0x52009229, 0x52009230, 0x00209113,
                                                    0x00209116, 0x00289110, 0x00289145};
    for (const DicomTag known : kSequences)
        if (tag == known)
            return true;
    return false;
}

bool HasLongLength(std::string_view type)
{
    constexpr std::string_view kTypes = "OB OD OF OL OV OW SQ SV UC UN UR UT UV";
    return kTypes.find(type) != std::string_view::npos;
}

// How the elements that follow are written.
struct Form
{
    bool isExplicit = true, bigEndian = false;
};

class Parser
{
public:
    explicit Parser(const std::string& path) : name_(FileNameOf(path)), file_(path, std::ios::binary)
    {
        file_.seekg(0, std::ios::end);
        size_ = uint64_t(std::max<std::streamoff>(file_.tellg(), 0));
        file_.seekg(0);
        if (!file_)
            throw Error(ErrorKind::Input, name_ + ": cannot be opened; check the path and the permissions");
    }

    DicomFile ReadFile()
    {
        DicomFile file;
        file.size = size_;
        SkipPreamble();
        ReadElements(file.data, size_, {}, 0, Part::Meta, file);
        file.transferSyntax = Trimmed(file.data.Value(kTransferSyntax));
        const Form form = {.isExplicit =
                               file.transferSyntax.empty() ? LooksExplicit() : file.transferSyntax != kImplicitSyntax,
                           .bigEndian = file.transferSyntax == kBigEndianSyntax};
        file.bigEndian = form.bigEndian;
        ReadElements(file.data, size_, form, 0, Part::Main, file);
        return file;
    }

    std::vector<std::string> ReadFragments(uint64_t offset)
    {
        Seek(offset);
        std::vector<std::string> fragments;
        while (true)
        {
            const DicomTag tag = ReadTag({});
            const uint32_t length = ReadNumber(4, {});
            if (tag == kSequenceEnd)
                break;
            if (tag != kItem)
                Fail();
            fragments.push_back(ReadValue(length));
        }
        if (!fragments.empty())
            fragments.erase(fragments.begin());
        return fragments;
    }

private:
    enum class Part
    {
        Meta, // the group in front that says how the rest is written
        Main, // the rest up to the pixels
        Item  // of a sequence
    };

    [[noreturn]] void Fail()
    {
        throw Error(ErrorKind::Input, name_ + ": damaged or cut off at byte " + std::to_string(position_) +
                                          " of its header; replace or remove the file");
    }

    void Seek(uint64_t position)
    {
        if (position > size_)
            Fail();
        file_.clear();
        file_.seekg(std::streamoff(position));
        position_ = position;
    }

    std::string ReadValue(uint64_t length)
    {
        if (length > size_ - position_)
            Fail();
        std::string value(size_t(length), '\0');
        file_.read(value.data(), std::streamsize(length));
        if (uint64_t(file_.gcount()) != length)
            Fail();
        position_ += length;
        return value;
    }

    uint32_t ReadNumber(size_t byteCount, Form form)
    {
        unsigned char bytes[4];
        file_.read(reinterpret_cast<char*>(bytes), std::streamsize(byteCount));
        if (size_t(file_.gcount()) != byteCount)
            Fail();
        position_ += byteCount;
        uint32_t number = 0;
        for (size_t i = 0; i < byteCount; ++i)
            number |= uint32_t(bytes[i]) << 8 * (form.bigEndian ? byteCount - 1 - i : i);
        return number;
    }

    DicomTag ReadTag(Form form)
    {
        const uint32_t group = ReadNumber(2, form);
        return group << 16 | ReadNumber(2, form);
    }

    void SkipPreamble()
    {
        constexpr uint64_t kPreamble = 128;
        if (size_ < kPreamble + 4)
            return;
        Seek(kPreamble);
        if (ReadValue(4) != "DICM")
            Seek(0);
    }

    // Explicit elements have two letters behind their tag.
    bool LooksExplicit()
    {
        const uint64_t start = position_;
        if (size_ - start < 8)
            return true;
        const std::string bytes = ReadValue(6);
        Seek(start);
        return std::isupper(static_cast<unsigned char>(bytes[4])) && std::isupper(static_cast<unsigned char>(bytes[5]));
    }

    // Reads elements up to `end`, the end of an item, or the pixels. `file` receives where the pixels are.
    void ReadElements(DicomDataSet& data, uint64_t end, Form form, int depth, Part part, DicomFile& file)
    {
        while (position_ < end)
        {
            const uint64_t start = position_;
            const DicomTag tag = ReadTag(form);
            if (part == Part::Meta && tag >> 16 != 2)
                return Seek(start);
            if (tag == kItemEnd && part == Part::Item)
            {
                ReadNumber(4, form);
                return;
            }
            std::string type;
            const uint32_t length = ReadTypeAndLength(form, type);
            if (tag == kPixelData && part == Part::Main)
            {
                file.pixelOffset = position_;
                if (length != kUndefinedLength)
                    file.pixelLength = length;
                return;
            }
            ReadElement(data.elements[tag], tag, type, length, form, depth, file);
        }
    }

    uint32_t ReadTypeAndLength(Form form, std::string& type)
    {
        if (!form.isExplicit)
            return ReadNumber(4, form);
        type = ReadValue(2);
        if (!HasLongLength(type))
            return ReadNumber(2, form);
        ReadNumber(2, form);
        return ReadNumber(4, form);
    }

    void ReadElement(DicomElement& element, DicomTag tag, const std::string& type, uint32_t length, Form form,
                     int depth, DicomFile& file)
    {
        if (length == kUndefinedLength || type == "SQ" || (!form.isExplicit && IsKnownSequence(tag)))
        {
            // A sequence of unknown type holds its items in the implicit form.
            const Form itemForm = type == "UN" ? Form{.isExplicit = false, .bigEndian = false} : form;
            return ReadSequence(element.items, length, itemForm, depth, file);
        }
        if (length > size_ - position_)
            Fail();
        if (length <= kMaxKeptValue)
            element.value = ReadValue(length);
        else
            Seek(position_ + length);
    }

    void ReadSequence(std::vector<DicomDataSet>& items, uint32_t length, Form form, int depth, DicomFile& file)
    {
        const uint64_t end = EndOf(length);
        if (depth >= kMaxDepth)
            Fail();
        while (position_ < end)
        {
            const DicomTag tag = ReadTag(form);
            const uint32_t itemLength = ReadNumber(4, form);
            if (tag == kSequenceEnd)
                return;
            if (tag != kItem)
                Fail();
            items.emplace_back();
            ReadElements(items.back(), EndOf(itemLength), form, depth + 1, Part::Item, file);
        }
    }

    uint64_t EndOf(uint32_t length)
    {
        if (length == kUndefinedLength)
            return size_;
        if (length > size_ - position_)
            Fail();
        return position_ + length;
    }

    std::string name_;
    std::ifstream file_;
    uint64_t size_ = 0, position_ = 0;
};
} // namespace

const std::string& DicomDataSet::Value(DicomTag tag) const
{
    static const std::string kNone;
    const auto element = elements.find(tag);
    return element == elements.end() ? kNone : element->second.value;
}

const std::vector<DicomDataSet>& DicomDataSet::Items(DicomTag tag) const
{
    static const std::vector<DicomDataSet> kNone;
    const auto element = elements.find(tag);
    return element == elements.end() ? kNone : element->second.items;
}

DicomFile ReadDicomElements(const std::string& path) { return Parser(path).ReadFile(); }

std::vector<std::string> ReadDicomFragments(const std::string& path, uint64_t pixelOffset)
{
    return Parser(path).ReadFragments(pixelOffset);
}
} // namespace corvane::host
