// Changed objects. The object is read again from its span; what that copy writes and what the
// changed one writes are compared, and only the difference goes into the bytes of the span.
#include "host/dxf/patch.h"

#include "host/db/block_reference.h"
#include "host/db/database_impl.h"
#include "host/db/polylines.h"
#include "host/db/unknown.h"
#include "host/dxf/load_context.h"
#include "host/dxf/object_tags.h"
#include "host/dxf/reader.h"
#include "host/dxf/tag_reader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace dxf {
namespace {

using HandleSource = std::function<std::uint64_t()>;

struct Piece {
    Tag tag;
    const char* end = nullptr;
    std::size_t section = 0;
};

/// Tags with the sections (type or subclass, and its how-many-eth) that they stand in.
struct Pieces {
    std::vector<Piece> list;
    std::vector<std::string> sections{std::string()};
};

/// Divides bytes into tags. Groups of applications and extended data belong to no section.
Pieces divide(std::string_view bytes, const Document& document) {
    constexpr std::size_t kNoSection = ~std::size_t{0};
    Pieces pieces;
    std::map<std::string, int> counts;
    TagReader reader(bytes, document.form().form, document.form().line_end);
    Tag tag;
    bool in_group = false;
    while (reader.next(tag)) {
        if (tag.code == 100 || (tag.code == 0 && !pieces.list.empty())) {
            std::string key = std::to_string(tag.code) + std::string(tag.trimmed());
            key += '#' + std::to_string(counts[key]++);
            pieces.sections.push_back(std::move(key));
        }
        const bool group_edge = tag.code == 102;
        const bool outside = in_group || group_edge || tag.code >= 999;
        pieces.list.push_back(
            {tag, reader.position(), outside ? kNoSection : pieces.sections.size() - 1});
        if (group_edge) {
            in_group = !tag.trimmed().starts_with('}');
        }
    }
    return pieces;
}

bool same_value(const Tag& a, const Tag& b, const Document& document) {
    if (a.raw() == b.raw()) {
        return true;
    }
    switch (value_type(a.code)) {
    case ValueType::kText:
        return document.encoding.decode(a.raw()) == document.encoding.decode(b.raw());
    case ValueType::kHandle: {
        std::uint64_t first = 0, second = 0;
        return parse_handle(a, first) && parse_handle(b, second) && first == second;
    }
    case ValueType::kChunk:
        return parse_chunk(a) == parse_chunk(b);
    default: {
        // Members may be kept in other units than the file's: the last digits may differ.
        double first = 0, second = 0;
        parse_real(a, first);
        parse_real(b, second);
        return std::abs(first - second) <= 1e-9 * std::max({1.0, std::abs(first)});
    }
    }
}

/// What happens to each tag of the span.
struct Change {
    bool removed = false;
    std::optional<std::string> value; ///< bytes of the whole new tag, or of its value in text
    std::string behind;               ///< new tags that follow
};

class Patcher {
public:
    Patcher(const AcDbDatabase& db, const AcDbObject& object, const HandleSource& new_handle)
      : db_(db)
      , document_(*DxfAccess::impl(db).document)
      , object_(object)
      , new_handle_(new_handle)
      , source_(divide(document_.bytes(DxfAccess::span(object)), document_))
      , changes_(source_.list.size()) {}

    std::string run();

private:
    std::string written(const AcDbObject& object) const;
    std::unique_ptr<AcDbObject> read_again(const Pieces& source) const;
    bool says(const std::string& patched, const std::string& wanted) const;
    void add(std::size_t anchor, const Piece& piece, std::size_t section);
    bool compare(const Pieces& before, const Pieces& after);
    void section(std::size_t index, const std::vector<const Piece*>& before,
                 const std::vector<const Piece*>& after);
    std::vector<std::size_t> locate(const std::vector<const Piece*>& before, std::size_t section);
    void replace(std::size_t at, const Piece& piece);
    void extension_dictionary(std::uint64_t handle);
    void extended_data(const std::string& application, const AcDbValues& values);
    std::string_view bytes_of(const Piece& piece) const {
        return {piece.tag.begin, static_cast<std::size_t>(piece.end - piece.tag.begin)};
    }
    std::size_t main_end() const;
    std::string assemble() const;

    const AcDbDatabase& db_;
    const Document& document_;
    const AcDbObject& object_;
    const HandleSource& new_handle_;
    Pieces source_;
    std::vector<Change> changes_;
    static constexpr std::size_t kNowhere = ~std::size_t{0};
};

/// The class's own tags, as they would be written into this file.
std::string Patcher::written(const AcDbObject& object) const {
    std::string out;
    TagWriter writer(out, document_.style());
    object.dxfOut(writer);
    return out;
}

/// The object that these bytes are.
std::unique_ptr<AcDbObject> Patcher::read_again(const Pieces& source) const {
    std::vector<Tag> tags;
    std::vector<std::size_t> starts;
    for (const Piece& piece : source.list) {
        if (piece.tag.code == 0) {
            starts.push_back(tags.size());
        }
        if (piece.tag.code != 999) {
            tags.push_back(piece.tag);
        }
    }
    starts.push_back(tags.size());
    std::unique_ptr<AcDbObject> copy;
    if (const auto* record = dynamic_cast<const AcDbNamedRecord*>(&object_); record != nullptr) {
        copy = std::make_unique<AcDbNamedRecord>(record->dxfName());
    } else if (AcDbUnknownEntity::cast(&object_) != nullptr) {
        copy = std::make_unique<AcDbUnknownEntity>();
    } else {
        copy.reset(static_cast<AcDbObject*>(object_.isA()->create()));
    }
    if (copy == nullptr) {
        return nullptr;
    }
    LoadContext context(const_cast<AcDbDatabase&>(db_), document_, nullptr);
    const std::span<const Tag> all(tags);
    copy->dxfIn(ObjectTags(all.subspan(starts[0], starts[1] - starts[0]), context));
    if (auto* reference = AcDbBlockReference::cast(copy.get()); reference != nullptr) {
        for (const AcDbObjectId id : AcDbBlockReference::cast(&object_)->attributes()) {
            if (id.isValid() && !DxfAccess::span(*id.stub()->object).empty()) {
                reference->appendAttribute(id); // those of the file stand behind it as before
            }
        }
    }
    auto* polyline = AcDbHeavyPolyline::cast(copy.get());
    for (std::size_t i = 1; polyline != nullptr && i + 1 < starts.size(); ++i) {
        const ObjectTags part(all.subspan(starts[i], starts[i + 1] - starts[i]), context);
        if (part.type() == "VERTEX") {
            read_vertex(*polyline, part);
        }
    }
    return copy;
}

/// For each tag of the copy: where in the span it stands, or nowhere (a default).
std::vector<std::size_t> Patcher::locate(const std::vector<const Piece*>& before,
                                         std::size_t section) {
    std::vector<std::size_t> places(before.size(), kNowhere);
    std::map<int, std::size_t> next; // by code: where to look on
    for (std::size_t i = 0; i < before.size(); ++i) {
        const Tag& wanted = before[i]->tag;
        for (std::size_t at = next[wanted.code]; at < source_.list.size(); ++at) {
            const Piece& piece = source_.list[at];
            if (piece.section == section && piece.tag.code == wanted.code &&
                same_value(piece.tag, wanted, document_)) {
                places[i] = at;
                next[wanted.code] = at + 1;
                break;
            }
        }
    }
    return places;
}

void Patcher::replace(std::size_t at, const Piece& piece) {
    changes_[at].value = document_.form().form == Form::kAscii ? std::string(piece.tag.raw())
                                                               : std::string(bytes_of(piece));
}

/// Puts a new tag in. Some properties stand once at most, and the file may have one that the class
/// passed over (the index beside a true colour): that one is replaced.
void Patcher::add(std::size_t anchor, const Piece& piece, std::size_t section) {
    static constexpr int kSingle[] = {6, 60, 62, 67, 347, 420};
    const int code = piece.tag.code;
    if (std::find(std::begin(kSingle), std::end(kSingle), code) != std::end(kSingle)) {
        for (std::size_t i = 0; i < source_.list.size(); ++i) {
            if (source_.list[i].section == section && source_.list[i].tag.code == code) {
                changes_[i].removed = false;
                replace(i, piece);
                return;
            }
        }
    }
    changes_[anchor].behind += bytes_of(piece);
}

void Patcher::section(std::size_t index, const std::vector<const Piece*>& before,
                      const std::vector<const Piece*>& after) {
    const std::vector<std::size_t> places = locate(before, index);
    std::size_t anchor = 0; // new tags go behind the last one that was found
    for (std::size_t i = 0; i < source_.list.size(); ++i) {
        if (source_.list[i].section == index) {
            anchor = i;
            break;
        }
    }
    const auto equal = [](const Piece* a, const Piece* b) {
        return a->tag.code == b->tag.code && a->tag.raw() == b->tag.raw();
    };
    const bool same_codes =
        before.size() == after.size() &&
        std::equal(before.begin(), before.end(), after.begin(),
                   [](const Piece* a, const Piece* b) { return a->tag.code == b->tag.code; });
    if (same_codes) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            anchor = places[i] != kNowhere ? places[i] : anchor;
            if (equal(before[i], after[i])) {
                continue;
            }
            if (places[i] != kNowhere) {
                replace(places[i], *after[i]);
            } else {
                add(anchor, *after[i], index);
            }
        }
        return;
    }
    std::size_t head = 0, tail = 0;
    while (head < before.size() && head < after.size() && equal(before[head], after[head])) {
        anchor = places[head] != kNowhere ? places[head] : anchor;
        ++head;
    }
    while (tail + head < before.size() && tail + head < after.size() &&
           equal(before[before.size() - 1 - tail], after[after.size() - 1 - tail])) {
        ++tail;
    }
    for (std::size_t i = head; i + tail < before.size(); ++i) {
        if (places[i] != kNowhere) {
            changes_[places[i]].removed = true;
        }
    }
    for (std::size_t i = head; i + tail < after.size(); ++i) {
        add(anchor, *after[i], index);
    }
}

/// Finds what differs, section by section. False when the parts are not the same ones any more
/// (vertices were added): the object is written anew then.
bool Patcher::compare(const Pieces& before, const Pieces& after) {
    if (before.sections != after.sections) {
        return false;
    }
    const auto sort = [](const Pieces& pieces) {
        std::vector<std::vector<const Piece*>> lists(pieces.sections.size());
        for (const Piece& piece : pieces.list) {
            if (piece.section < lists.size()) {
                lists[piece.section].push_back(&piece);
            }
        }
        return lists;
    };
    const auto old_lists = sort(before), new_lists = sort(after);
    for (std::size_t i = 0; i < old_lists.size(); ++i) {
        const bool equal =
            std::equal(old_lists[i].begin(), old_lists[i].end(), new_lists[i].begin(),
                       new_lists[i].end(), [](const Piece* a, const Piece* b) {
                           return a->tag.code == b->tag.code && a->tag.raw() == b->tag.raw();
                       });
        if (equal) {
            continue;
        }
        const auto at =
            std::find(source_.sections.begin(), source_.sections.end(), before.sections[i]);
        // A section that the file lacks: its tags stand in the main part.
        section(at != source_.sections.end()
                    ? static_cast<std::size_t>(at - source_.sections.begin())
                    : 0,
                old_lists[i], new_lists[i]);
    }
    return true;
}

/// The last tag of the object itself that is no extended data.
std::size_t Patcher::main_end() const {
    std::size_t last = 0;
    for (std::size_t i = 1; i < source_.list.size() && source_.list[i].tag.code != 0; ++i) {
        if (source_.list[i].tag.code < 1000) {
            last = i;
        }
    }
    return last;
}

void Patcher::extension_dictionary(std::uint64_t handle) {
    std::string group, link;
    TagWriter writer(group, document_.style());
    writer.raw(102, "{ACAD_XDICTIONARY");
    writer.handle(360, handle);
    writer.raw(102, "}");
    TagWriter(link, document_.style()).handle(360, handle);
    std::size_t behind = 0;
    for (std::size_t i = 1; i < source_.list.size() && source_.list[i].tag.code != 0; ++i) {
        const Tag& tag = source_.list[i].tag;
        if (tag.is(102, "{ACAD_XDICTIONARY") && i + 1 < source_.list.size() &&
            source_.list[i + 1].tag.code == 360) {
            changes_[i + 1].removed = true;
            changes_[i].behind += link;
            return;
        }
        if (behind == 0 && (tag.code == 5 || tag.code == 105)) {
            behind = i;
        }
    }
    changes_[behind].behind += group;
}

void Patcher::extended_data(const std::string& application, const AcDbValues& values) {
    std::string text;
    TagWriter writer(text, document_.style());
    for (const AcDbValue& value : values) {
        writer.value(value);
    }
    bool inside = false;
    std::size_t end = main_end();
    for (std::size_t i = 1; i < source_.list.size() && source_.list[i].tag.code != 0; ++i) {
        const Tag& tag = source_.list[i].tag;
        if (tag.code == 1001) {
            inside = fold_name(document_.encoding.decode(tag.raw())) == application;
        }
        if (tag.code < 1000) {
            continue;
        }
        changes_[i].removed = changes_[i].removed || inside;
        end = i;
    }
    changes_[end].behind += text;
}

std::string Patcher::assemble() const {
    std::string out;
    for (std::size_t i = 0; i < source_.list.size(); ++i) {
        const Piece& piece = source_.list[i];
        const Change& change = changes_[i];
        if (!change.removed && !change.value) {
            out += bytes_of(piece);
        } else if (!change.removed && document_.form().form == Form::kAscii) {
            const char* value_end = piece.tag.data + piece.tag.length;
            out.append(piece.tag.begin, piece.tag.data);
            out += *change.value;
            out.append(value_end, piece.end);
        } else if (!change.removed) {
            out += *change.value;
        }
        out += change.behind;
    }
    return out;
}

/// Whether the patched bytes, read again, have the members that were wanted.
bool Patcher::says(const std::string& patched, const std::string& wanted) const {
    const Pieces pieces = divide(patched, document_);
    const std::unique_ptr<AcDbObject> copy = read_again(pieces);
    const std::string text = written(*copy);
    const Pieces got = divide(text, document_), want = divide(wanted, document_);
    return std::equal(got.list.begin(), got.list.end(), want.list.begin(), want.list.end(),
                      [&](const Piece& a, const Piece& b) {
                          return a.tag.code == b.tag.code && same_value(a.tag, b.tag, document_);
                      });
}

std::string Patcher::run() {
    if (const std::unique_ptr<AcDbObject> copy = read_again(source_); copy != nullptr) {
        const std::string before = written(*copy), after = written(object_);
        const bool good =
            before == after || (compare(divide(before, document_), divide(after, document_)) &&
                                says(assemble(), after));
        if (!good) { // parts were added, or values stand where only defaults were expected
            std::string out;
            write_new_object(out, document_.style(), object_, new_handle_);
            return out;
        }
    }
    if (const ObjectExtras* extras = DxfAccess::extras(object_); extras != nullptr) {
        if (extras->extension_dictionary != 0) {
            extension_dictionary(extras->extension_dictionary);
        }
        for (const auto& [application, values] : extras->xdata) {
            extended_data(application, values);
        }
    }
    return assemble();
}

} // namespace

std::string patch_object(const AcDbDatabase& database, const AcDbObject& object,
                         const HandleSource& new_handle) {
    return Patcher(database, object, new_handle).run();
}

void write_new_object(std::string& out, const WriteStyle& style, const AcDbObject& object,
                      const HandleSource& new_handle) {
    TagWriter writer(out, style);
    writer.set_handle_source(new_handle);
    const std::string name = object.dxfName();
    const bool polyline = AcDbHeavyPolyline::cast(&object) != nullptr;
    writer.raw(0, name);
    writer.handle(name == "DIMSTYLE" ? 105 : 5, object.getAcDbHandle().value());
    const AcDbObjectId dictionary = object.extensionDictionary();
    if (dictionary.isValid() && !dictionary.isErased()) {
        writer.raw(102, "{ACAD_XDICTIONARY");
        writer.id(360, dictionary);
        writer.raw(102, "}");
    }
    // What lies in the objects section has its owner in every version.
    const bool graphic =
        AcDbEntity::cast(&object) != nullptr || AcDbSymbolTableRecord::cast(&object) != nullptr;
    if (writer.has_subclasses() || !graphic) {
        writer.id(330, object.ownerId());
    }
    std::string own;
    TagWriter own_writer(own, style);
    own_writer.set_handle_source(new_handle);
    object.dxfOut(own_writer);
    std::string data;
    TagWriter data_writer(data, style);
    for (const AcDbValue& value : object.xData()) {
        data_writer.value(value);
    }
    if (!polyline || data.empty()) {
        out += own + data;
        return;
    }
    // Extended data of a polyline stands before its first part.
    TagReader reader(own, style.form, style.line_end.back());
    Tag tag;
    while (reader.next(tag) && tag.code != 0) {
    }
    const auto head = static_cast<std::size_t>(tag.begin - own.data());
    out += own.substr(0, head) + data + own.substr(head);
}

} // namespace dxf
