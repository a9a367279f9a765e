#include "SavedModel.h"

#include "../model/ForEachStack.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <istream>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

namespace brix {
namespace {

using Bytes = std::span<const std::uint8_t>;

static_assert(std::endian::native == std::endian::little && sizeof(Plate) == 32);

constexpr std::array<std::uint8_t, 8> Magic{'B', 'R', 'I', 'X', 'V', 'O', 'X', '\n'};
constexpr std::uint32_t Version = 1;
constexpr std::size_t HeaderSize = 80;

// What a level of a chunk is; in `Stacks`, stacks follow.
enum class Kind : std::uint8_t
{
    Empty,
    Full, // inside the extents
    Stacks
};

// What stands in the place of a stack's number of layers, 1 to 64.
constexpr std::uint8_t EmptyStackCode = 0;
constexpr std::uint8_t FullStackCode = 255; // inside the extents

constexpr std::size_t MostStacks = 1365; // of all levels of a chunk
constexpr std::size_t MostStackSize = 1 + (StackHeight - 1) + StackHeight * sizeof(Plate);
constexpr std::size_t LeastRecordSize = 3 * sizeof(std::int16_t) + 1;
constexpr std::size_t MostRecordSize = LeastRecordSize - 1 + LevelCount + MostStacks * MostStackSize;

// Which codes the stacks of a store have.
class CodesThatOccur
{
public:
    void Add(std::uint8_t code)
    {
        isAnyEmpty_ = isAnyEmpty_ || code == EmptyStackCode;
        isAnyFull_ = isAnyFull_ || code == FullStackCode;
        isAnyOther_ = isAnyOther_ || (code != EmptyStackCode && code != FullStackCode);
    }

    Kind KindOfAll() const
    {
        if (isAnyOther_ || (isAnyEmpty_ && isAnyFull_)) return Kind::Stacks;
        return isAnyFull_ ? Kind::Full : Kind::Empty;
    }

private:
    bool isAnyEmpty_ = false, isAnyFull_ = false, isAnyOther_ = false;
};

// A full stack, inside the part of it that the extents hold.
Stack FullStack(const OffsetBox& inside)
{
    Stack full = Stack::WhollyFilled();
    if (!inside.IsWholeStack()) full.FillOutsideBox(inside.lower, inside.upper, false);
    return full;
}

Stack InsideOf(const Stack& stack, const OffsetBox& inside)
{
    Stack part = stack;
    part.FillOutsideBox(inside.lower, inside.upper, false);
    return part;
}

// What a stack holds, of which the extents hold a part: nothing beyond it, or nothing beyond and all of it, or something beyond.
enum class Content
{
    Inside,
    Full,
    Beyond
};

// Without a copy: where a model is flat, extents cut all of its stacks.
Content ContentOf(const Stack& stack, const OffsetBox& inside)
{
    const std::span<const Plate> plates = stack.Plates();
    const std::span<const std::uint8_t> offsets = stack.LayerOffsets();
    const Plate box = Box({inside.lower[0], inside.lower[1]}, {inside.upper[0], inside.upper[1]});
    bool isFull = true;
    for (std::size_t layer = 0; layer < plates.size(); ++layer) {
        const std::int64_t lowest = offsets[layer];
        const std::int64_t highest = (layer + 1 < plates.size() ? offsets[layer + 1] : StackHeight) - 1;
        const bool isWithin = inside.lower[2] <= lowest && highest <= inside.upper[2];
        if (!IsEmpty(isWithin ? AndNot(plates[layer], box) : plates[layer])) return Content::Beyond;
        const bool isOutside = highest < inside.lower[2] || inside.upper[2] < lowest;
        isFull = isFull && (isOutside || plates[layer] == box);
    }
    return isFull ? Content::Full : Content::Inside;
}

// Zeros have no sign, as frames that differ in it alone are equal, and there is one NaN.
double Canonical(double number)
{
    if (std::isnan(number)) return std::numeric_limits<double>::quiet_NaN();
    return number == 0 ? 0.0 : number;
}

// ---- Writing

// Bytes that are collected one after the other, in memory for the largest record.
class Record
{
public:
    Record() : bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(MostRecordSize)) {}

    template <class Number> void Add(Number number) { Add(&number, sizeof number); }
    void Add(const void* bytes, std::size_t count)
    {
        std::memcpy(bytes_.get() + size_, bytes, count);
        size_ += count;
    }

    std::size_t Size() const { return size_; }
    void Shrink(std::size_t size) { size_ = size; }
    std::uint8_t& operator[](std::size_t i) { return bytes_[i]; }
    Bytes All() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t size_ = 0;
};

// A stack that lies wholly inside the extents; hosts may have left equal layers. Gives the code that it begins with.
std::uint8_t AddStack(Record& record, const Stack& stack)
{
    const std::size_t first = record.Size();
    const std::span<const Plate> plates = stack.Plates();
    const std::span<const std::uint8_t> offsets = stack.LayerOffsets();
    record.Add(EmptyStackCode);
    if (stack.IsUnallocated()) return EmptyStackCode;
    // The layers that differ from the one below: mostly all.
    std::uint64_t isNew = 1;
    for (std::size_t layer = 1; layer < plates.size(); ++layer)
        isNew |= std::uint64_t{plates[layer] == plates[layer - 1] ? 0U : 1U} << layer;
    const auto count = static_cast<std::uint8_t>(std::popcount(isNew));
    if (count == 1 && (IsEmpty(plates[0]) || IsFull(plates[0]))) {
        record[first] = IsFull(plates[0]) ? FullStackCode : EmptyStackCode;
        return record[first];
    }
    if (count == plates.size()) {
        record.Add(offsets.data() + 1, offsets.size() - 1);
        record.Add(plates.data(), plates.size_bytes());
    } else {
        for (std::uint64_t left = isNew & ~std::uint64_t{1}; left != 0; left &= left - 1)
            record.Add(offsets[static_cast<std::size_t>(std::countr_zero(left))]);
        for (std::uint64_t left = isNew; left != 0; left &= left - 1)
            record.Add(plates[static_cast<std::size_t>(std::countr_zero(left))]);
    }
    record[first] = count;
    return count;
}

std::uint8_t AddStack(Record& record, const Stack& stack, const OffsetBox& inside)
{
    if (inside.IsWholeStack()) return AddStack(record, stack);
    const Content content = ContentOf(stack, inside);
    if (content == Content::Inside) return AddStack(record, stack);
    if (content == Content::Beyond) {
        const Stack part = InsideOf(stack, inside);
        if (ContentOf(part, inside) == Content::Inside) return AddStack(record, part);
    }
    record.Add(FullStackCode);
    return FullStackCode;
}

Kind AddStore(Record& record, const Store& store)
{
    if (store.IsUniform()) return store.IsUniformlyFull() ? Kind::Full : Kind::Empty;
    const std::size_t first = record.Size();
    CodesThatOccur codes;
    ForEachStackOfStore(store, [&](const Store&, const StackIndices& ij) {
        codes.Add(AddStack(record, store.ValidStackRef(ij), store.Inside(ij)));
    });
    if (codes.KindOfAll() != Kind::Stacks) record.Shrink(first);
    return codes.KindOfAll();
}

// A chunk with all levels, behind its length; nothing where it is empty.
void AddChunk(Record& record, const Triple& chunkIndices, const VoxelChunk<bool>& chunk, std::int64_t finestLOD)
{
    record.Add(std::uint32_t{0});
    for (const std::int64_t index : chunkIndices) record.Add(static_cast<std::int16_t>(index));
    const std::size_t kinds = record.Size();
    bool isEmpty = true;
    for (std::int64_t lod = 0; lod <= finestLOD; ++lod) record.Add(Kind::Empty);
    for (std::int64_t lod = 0; lod <= finestLOD; ++lod) {
        const Kind kind = AddStore(record, chunk.VoxelStoreRef(lod));
        record[kinds + static_cast<std::size_t>(lod)] = static_cast<std::uint8_t>(kind);
        isEmpty = isEmpty && kind == Kind::Empty;
    }
    if (isEmpty) return record.Shrink(0);
    const auto length = static_cast<std::uint32_t>(record.Size() - sizeof(std::uint32_t));
    std::memcpy(&record[0], &length, sizeof length);
}

void AddHeader(Record& record, const VoxelModel<bool>& model)
{
    const Axes& axes = model.AxesRef();
    const Extents& extents = model.ExtentsRef(model.FinestLOD());
    record.Add(Magic);
    record.Add(Version);
    record.Add(static_cast<std::uint8_t>(model.FinestLOD()));
    record.Add(static_cast<std::uint8_t>(axes.VerticalLOD()));
    record.Add(std::uint16_t{0});
    record.Add(Canonical(axes.WorldVoxelSpacing0()));
    for (const double coord : axes.WorldVoxelOrigin()) record.Add(Canonical(coord));
    record.Add(Canonical(axes.WorldVoxelRotation()));
    for (const Triple& corner : {extents.LowerIndices(), extents.UpperIndices()}) {
        for (const std::int64_t index : corner) record.Add(static_cast<std::int32_t>(index));
    }
}

// Hands all bytes but the hash to put(bytes), and gives the hash.
template <class Put> Hash128 Write(const VoxelModel<bool>& model, const Put& put)
{
    Murmur3 hash;
    Record record;
    const auto putRecord = [&] {
        hash.Add(record.All());
        put(record.All());
        record.Shrink(0);
    };
    AddHeader(record, model);
    putRecord();
    WatchedLoop loop(model.StoredChunkCount());
    model.ForEachChunk([&](const Triple& chunkIndices, const VoxelChunk<bool>& chunk) {
        AddChunk(record, chunkIndices, chunk, model.FinestLOD());
        putRecord();
        loop.Step();
    });
    record.Add(std::uint32_t{0});
    putRecord();
    return hash.Finish();
}

// ---- Reading

std::runtime_error Damaged() { return std::runtime_error("The saved voxel model is damaged."); }
std::runtime_error CutOff() { return std::runtime_error("The saved voxel model is cut off."); }

void RequireSound(bool condition)
{
    if (!condition) throw Damaged();
}

// Bytes of a record that are taken one after the other.
class RecordReader
{
public:
    explicit RecordReader(Bytes bytes) : bytes_(bytes) {}

    Bytes Take(std::size_t count)
    {
        RequireSound(count <= bytes_.size());
        const Bytes taken = bytes_.first(count);
        bytes_ = bytes_.subspan(count);
        return taken;
    }
    template <class Number> Number Take()
    {
        Number number;
        std::memcpy(&number, Take(sizeof number).data(), sizeof number);
        return number;
    }
    bool IsAtEnd() const { return bytes_.empty(); }

private:
    Bytes bytes_;
};

// Room for the layers of a stack, used again and again.
struct Layers
{
    std::array<std::uint8_t, static_cast<std::size_t>(StackHeight)> offsets{};
    std::array<Plate, static_cast<std::size_t>(StackHeight)> plates;
};

// Gives the code that it begins with.
std::uint8_t ReadStack(RecordReader& reader, Layers& layers, Stack& stack, const OffsetBox& inside)
{
    const auto count = reader.Take<std::uint8_t>();
    if (count == EmptyStackCode) return count;
    if (count == FullStackCode) {
        stack = FullStack(inside);
        return count;
    }
    RequireSound(count <= StackHeight);
    auto& [offsets, plates] = layers;
    const Bytes starts = reader.Take(std::size_t{count} - 1);
    std::copy(starts.begin(), starts.end(), offsets.begin() + 1);
    RequireSound(std::adjacent_find(offsets.begin(), offsets.begin() + count, std::greater_equal<>()) ==
                     offsets.begin() + count &&
                 offsets[std::size_t{count} - 1] < StackHeight);
    std::memcpy(plates.data(), reader.Take(count * sizeof(Plate)).data(), count * sizeof(Plate));
    RequireSound(std::adjacent_find(plates.begin(), plates.begin() + count) == plates.begin() + count);
    stack.Assign({plates.data(), count}, {offsets.data(), count});
    RequireSound(!stack.IsUnallocated() && !stack.IsWhollyFilled());
    RequireSound(inside.IsWholeStack() || ContentOf(stack, inside) == Content::Inside);
    return count;
}

void ReadStore(RecordReader& reader, Layers& layers, Kind kind, Store& store)
{
    if (kind == Kind::Empty) return;
    if (kind == Kind::Full && store.SharesFullStacks()) return store.MakeUniform(true);
    RequireSound(kind == Kind::Full || kind == Kind::Stacks);
    CodesThatOccur codes;
    ForEachStackOfStore(store, [&](Store&, const StackIndices& ij) {
        Stack& stack = store.ValidStackRef(ij);
        if (kind == Kind::Full)
            stack = FullStack(store.Inside(ij));
        else
            codes.Add(ReadStack(reader, layers, stack, store.Inside(ij)));
    });
    RequireSound(kind == Kind::Full || codes.KindOfAll() == Kind::Stacks);
}

// Whether chunk a is written before chunk b: by z, then by y, then by x.
bool IsBefore(const Triple& a, const Triple& b)
{
    return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

// Gives the chunk's indices.
Triple ReadChunk(RecordReader reader, Layers& layers, VoxelModel<bool>& model)
{
    Triple chunkIndices{};
    for (std::int64_t& index : chunkIndices) index = reader.Take<std::int16_t>();
    RequireSound(model.IsChunkValid(chunkIndices));
    const Bytes kinds = reader.Take(static_cast<std::size_t>(model.FinestLOD()) + 1);
    RequireSound(std::any_of(kinds.begin(), kinds.end(), [](std::uint8_t kind) { return kind != 0; }));
    VoxelChunk<bool>& chunk = model.ChunkRef(chunkIndices);
    for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod)
        ReadStore(reader, layers, static_cast<Kind>(kinds[static_cast<std::size_t>(lod)]), chunk.VoxelStoreRef(lod));
    RequireSound(reader.IsAtEnd());
    return chunkIndices;
}

// An empty model of the frame, extents and levels that a header tells.
VoxelModel<bool> ReadHeader(Bytes header)
{
    RecordReader reader(header);
    const Bytes magic = reader.Take(Magic.size());
    if (!std::equal(magic.begin(), magic.end(), Magic.begin())) throw std::runtime_error("The data is not a saved voxel model.");
    if (const auto version = reader.Take<std::uint32_t>(); version != Version)
        throw std::runtime_error("The saved voxel model has version " + std::to_string(version) +
                                 "; this library reads version " + std::to_string(Version) + ".");
    const auto finestLOD = reader.Take<std::uint8_t>();
    const auto verticalLOD = reader.Take<std::uint8_t>();
    RequireSound(reader.Take<std::uint16_t>() == 0);
    std::array<double, 5> frame{};
    for (double& number : frame) {
        number = reader.Take<double>();
        RequireSound(std::bit_cast<std::uint64_t>(number) == std::bit_cast<std::uint64_t>(Canonical(number)));
    }
    std::array<Triple, 2> corners{};
    for (Triple& corner : corners) {
        for (std::int64_t& index : corner) index = reader.Take<std::int32_t>();
    }
    try {
        const Axes axes(frame[0], {frame[1], frame[2], frame[3]}, frame[4], verticalLOD);
        return VoxelModel<bool>(Extents(axes, corners[0], corners[1], finestLOD), finestLOD);
    } catch (const std::domain_error&) {
        throw Damaged();
    }
}

// `take(count)` gives so many bytes that follow, or throws.
template <class Take> VoxelModel<bool> Read(const Take& take)
{
    Murmur3 hash;
    const auto takeHashed = [&](std::size_t count) {
        const Bytes bytes = take(count);
        hash.Add(bytes);
        return bytes;
    };
    VoxelModel<bool> model = ReadHeader(takeHashed(HeaderSize));
    const auto layers = std::make_unique<Layers>();
    Triple last = Minus(model.LowerChunkIndices(), {1, 1, 1});
    while (const auto length = RecordReader(takeHashed(sizeof(std::uint32_t))).Take<std::uint32_t>()) {
        RequireSound(LeastRecordSize <= length && length <= MostRecordSize);
        const Triple chunk = ReadChunk(RecordReader(takeHashed(length)), *layers, model);
        RequireSound(IsBefore(last, chunk));
        last = chunk;
        CheckWatch(); // nobody knows how many are to come
    }
    const Hash128 expected = hash.Finish();
    const Bytes found = take(expected.size());
    RequireSound(std::equal(found.begin(), found.end(), expected.begin()));
    return model;
}

} // namespace

void SaveModel(const VoxelModel<bool>& model, std::ostream& stream)
{
    const auto put = [&](Bytes bytes) {
        stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!stream) throw std::runtime_error("The voxel model cannot be written.");
    };
    put(Write(model, put));
}

std::vector<std::uint8_t> SaveModel(const VoxelModel<bool>& model)
{
    std::vector<std::uint8_t> saved;
    saved.reserve(HeaderSize + model.AllocatedBytes()); // more than enough
    const auto put = [&](Bytes bytes) { saved.insert(saved.end(), bytes.begin(), bytes.end()); };
    const Hash128 hash = Write(model, put);
    put(hash);
    return saved;
}

VoxelModel<bool> LoadModel(std::istream& stream)
{
    std::vector<std::uint8_t> buffer;
    return Read([&](std::size_t count) -> Bytes {
        if (buffer.size() < count) buffer.resize(count);
        stream.read(reinterpret_cast<char*>(buffer.data()), static_cast<std::streamsize>(count));
        if (stream.gcount() != static_cast<std::streamsize>(count)) throw CutOff();
        return {buffer.data(), count};
    });
}

VoxelModel<bool> LoadModel(std::span<const std::uint8_t> bytes)
{
    std::size_t taken = 0;
    VoxelModel<bool> model = Read([&](std::size_t count) -> Bytes {
        if (bytes.size() - taken < count) throw CutOff();
        taken += count;
        return bytes.subspan(taken - count, count);
    });
    RequireSound(taken == bytes.size());
    return model;
}

Hash128 ContentHash(const VoxelModel<bool>& model)
{
    return Write(model, [](Bytes) {});
}

} // namespace brix
