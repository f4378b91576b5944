#pragma once

namespace vexa {

double nfitBuiltin();  // nfit

}  // namespace vexa
