#include "base/sha256.h"

#include <string>

#include <gtest/gtest.h>

namespace quimo::base {
namespace {

TEST(Sha256, DaLosResumenesDelEstandarComoQuieraQueLleguen) {
    const struct {
        std::string bytes;
        const char* resumen;
    } casos[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& caso : casos) {
        for (const std::size_t trozo : {std::size_t{1}, std::size_t{63}, std::size_t{1} << 20}) {
            Sha256 resumen;
            for (std::size_t i = 0; i < caso.bytes.size(); i += trozo)
                resumen.Agregar(caso.bytes.data() + i, std::min(trozo, caso.bytes.size() - i));
            EXPECT_EQ(resumen.Terminar(), caso.resumen) << caso.bytes.size() << ' ' << trozo;
        }
    }
}

TEST(Sha256, EmpiezaDeNuevoTrasSuFin) {
    Sha256 resumen;
    resumen.Agregar("otro", 4);
    resumen.Terminar();
    resumen.Agregar("abc", 3);
    EXPECT_EQ(resumen.Terminar(),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace quimo::base
