// Leaders of several lines in DXF: groups within groups, told by markers of their own.
#include "host/db/mleader.h"

#include "host/dxf/fields.h"

/// Takes tags in their order and knows in which group it is.
class MLeaderReader {
public:
    MLeaderReader(AcDbMLeader& leader, const dxf::ObjectTags& tags)
      : leader_(leader)
      , tags_(tags) {}

    void take(const dxf::Tag& tag) {
        if (marker(tag)) {
            return;
        }
        switch (group_) {
        case Group::kOutside:
            outside(tag);
            break;
        case Group::kContext:
            context(tag);
            break;
        case Group::kBranch:
            branch(tag);
            break;
        default:
            line(tag);
        }
    }

private:
    enum class Group { kOutside, kContext, kBranch, kLine };

    bool marker(const dxf::Tag& tag) {
        struct Row {
            int code;
            std::string_view text;
            Group from, to;
        };
        static constexpr Row kRows[] = {{300, "CONTEXT_DATA{", Group::kOutside, Group::kContext},
                                        {302, "LEADER{", Group::kContext, Group::kBranch},
                                        {304, "LEADER_LINE{", Group::kBranch, Group::kLine},
                                        {305, "}", Group::kLine, Group::kBranch},
                                        {303, "}", Group::kBranch, Group::kContext},
                                        {301, "}", Group::kContext, Group::kOutside}};
        for (const Row& row : kRows) {
            if (row.from == group_ && tag.is(row.code, row.text)) {
                if (row.to == Group::kBranch && row.from == Group::kContext) {
                    leader_.branches_.emplace_back();
                } else if (row.to == Group::kLine) {
                    leader_.branches_.back().lines.emplace_back();
                }
                group_ = row.to;
                return true;
            }
        }
        return false;
    }

    void outside(const dxf::Tag& tag) {
        using F = dxf::Field<AcDbMLeader>;
        static constexpr F kFields[] = {F(170, &AcDbMLeader::line_type_),
                                        F(342, &AcDbMLeader::arrow_)};
        if (tag.code == 42 && leader_.arrow_size_ == 0) {
            leader_.arrow_size_ = tags_.real(tag); // the context tells the scaled one
        }
        dxf::load_fields(leader_, kFields, std::span(&tag, 1), tags_);
    }

    void context(const dxf::Tag& tag) {
        using F = dxf::Field<AcDbMLeader>;
        static constexpr F kFields[] = {
            F(140, &AcDbMLeader::arrow_size_),  F(304, &AcDbMLeader::text_),
            F(296, &AcDbMLeader::has_block_),   F(341, &AcDbMLeader::block_),
            F(14, &AcDbMLeader::block_normal_), F(15, &AcDbMLeader::block_position_),
            F(16, &AcDbMLeader::block_scale_),  F(46, &AcDbMLeader::block_rotation_)};
        if (tag.code == 47) {
            leader_.block_matrix_.push_back(tags_.real(tag));
        } else if (const int axis = tag.code / 10 - 11; axis >= 0 && axis < 3) {
            const int which = tag.code % 10; // 111: along X, 112: along Y
            if (which == 1 || which == 2) {
                dxf::set_coordinate(which == 1 ? plane_x_ : plane_y_, axis, tags_.real(tag));
                const AcGeVector3d normal = plane_x_.crossProduct(plane_y_);
                leader_.plane_normal_ =
                    normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
            }
        } else {
            dxf::load_fields(leader_, kFields, std::span(&tag, 1), tags_);
        }
    }

    void branch(const dxf::Tag& tag) {
        AcDbMLeader::Branch& now = leader_.branches_.back();
        using F = dxf::Field<AcDbMLeader::Branch>;
        static constexpr F kFields[] = {F(10, &AcDbMLeader::Branch::landing),
                                        F(11, &AcDbMLeader::Branch::direction),
                                        F(40, &AcDbMLeader::Branch::landing_length)};
        if (tag.code == 290) {
            now.has_landing_point = tags_.integer(tag) != 0;
        }
        dxf::load_fields(now, kFields, std::span(&tag, 1), tags_);
    }

    void line(const dxf::Tag& tag) {
        AcDbMLeader::Line& now = leader_.branches_.back().lines.back();
        switch (tag.code) {
        case 10:
            now.points.push_back({tags_.real(tag), 0, 0});
            break;
        case 20:
        case 30:
            if (!now.points.empty()) {
                dxf::set_coordinate(now.points.back(), tag.code / 10 - 1, tags_.real(tag));
            }
            break;
        case 40:
            now.arrow_size = tags_.real(tag);
            break;
        case 341:
            now.arrow = tags_.id(tag);
            break;
        default:
            break;
        }
    }

    AcDbMLeader& leader_;
    const dxf::ObjectTags& tags_;
    Group group_ = Group::kOutside;
    AcGeVector3d plane_x_ = AcGeVector3d::kXAxis, plane_y_ = AcGeVector3d::kYAxis;
};

void AcDbMLeader::dxfIn(const dxf::ObjectTags& tags) {
    AcDbEntity::dxfIn(tags);
    MLeaderReader reader(*this, tags);
    for (const dxf::Tag& tag : tags.own()) {
        reader.take(tag);
    }
    dxf::repair_normal(block_normal_, tags);
}
