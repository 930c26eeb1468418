#include <KZBCalculator/kzb_store.h>
#include <KZBCalculator/kzbcalc.h>

int main() {
    // The one call with C++ linkage resolves too; a null handle is refused.
    return kzbcalcGetMagFlux(1, nullptr) == 180039.0 ? 0 : 1;
}
