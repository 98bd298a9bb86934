#include "convert/copy_front.hpp"

namespace jorm {

int64_t Detached::move(jorm_xe *xe, uint64_t options, int axes, const int32_t *size, int32_t channels, Operand &o) {
    if (!xe) return JORM_EINVAL;
    if (o.by_pixel) channels = 1;
    int64_t bytes = element_size(o.type);
    for (int i = axes - 1; i >= 0; --i) {
        stride_[i] = int32_t(bytes);
        if (bytes != stride_[i] || __builtin_mul_overflow(bytes, int64_t(i + 1 < axes ? size[i] : channels), &bytes))
            return JORM_ENOMEM;
    }
    block_.emplace(xe, size_t(bytes), 64);
    if (!*block_) return JORM_ENOMEM;
    const Operand copy = {o.type, block_->as<char>(), stride_, o.by_pixel};
    const int64_t status = copy_block(xe, options, block_of(axes, size, channels, copy, o));
    o = copy;
    return status;
}

int64_t Detached::move_from(const Operand &dst, jorm_xe *xe, uint64_t options, const Front &f, Operand &o) {
    const int axes = int(f.word & 15);
    if (coincide(axes, f.sizes(), f.size[3], dst, o) || !may_meet(axes, f.size[3], f.sizes(), dst, f.sizes(), o))
        return JORM_OK;
    return move(xe, options, axes, f.sizes(), f.size[3], o);
}

} // namespace jorm
