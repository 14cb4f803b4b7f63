#include "unit/members.hpp"

namespace unit {

word word_at(std::string const& block, std::size_t offset, std::size_t width) {
    word content = 0;
    if (offset + width > block.size()) {
        ADD_FAILURE() << "a block of " << block.size() << " bytes has no field at " << offset;
        return content;
    }
    std::memcpy(&content, block.data() + offset, width);
    return content;
}

void expect_fields(scripted::call const& call, std::vector<field> const& fields) {
    for (field const& field : fields) {
        EXPECT_EQ(word_at(call.block, field.offset, field.width), field.content)
            << "at offset " << field.offset << " of " << call.name;
    }
}

void answer(void* block, results const& at, std::int32_t status, void* made) {
    auto* const bytes = static_cast<char*>(block);
    auto const write = [=](std::size_t offset, auto const& content) {
        if (offset != nowhere) {
            std::memcpy(bytes + offset, &content, sizeof content);
        }
    };
    write(at.status, status);
    write(at.object, made);
    if (at.through != nowhere) {
        void** place = nullptr;
        std::memcpy(&place, bytes + at.through, sizeof place);
        ASSERT_NE(place, nullptr);
        *place = made;
    }
}

} // namespace unit
