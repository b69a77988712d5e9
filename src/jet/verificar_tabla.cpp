// The verification of one table.

#include <algorithm>

#include "jet/clave.h"
#include "jet/indice.h"
#include "jet/pagina_datos.h"
#include "jet/verificacion.h"

namespace quimo::jet {

namespace {

bool TieneMapas(const ColumnaFisica& f) {
    return f.mapa_largos && f.mapa_largos->pagina != 0 && f.mapa_largos_libres->pagina != 0;
}

}  // namespace

VerificadorTabla::VerificadorTabla(Verificacion& verificacion,
                                   std::shared_ptr<const Esquema> esquema)
    : v_(verificacion),
      esquema_(std::move(esquema)),
      nombre_("la tabla " + esquema_->tabla.nombre),
      lectura_(verificacion.Archivo()),
      paginas_largos_(esquema_->fisicas.size()),
      entradas_(esquema_->reales.size()),
      sin_clave_(esquema_->reales.size()) {}

void VerificadorTabla::Hacer() {
    ComprobarDefinicion();
    for (std::size_t i = 0; i < esquema_->fisicas.size(); ++i) {
        const ColumnaFisica& f = esquema_->fisicas[i];
        if (!TieneMapas(f)) {
            // Tables of Access itself may lack them.
            if (EsLargo(esquema_->tabla.columnas[i].tipo)) {
                v_.Rareza("No hay mapas de valores largos para " + NombrarColumna(*esquema_, i) +
                          ".");
            }
            continue;
        }
        const auto paginas = ComprobarPaginas(*f.mapa_largos, *f.mapa_largos_libres, kDuenoLargos,
                                              NombrarColumna(*esquema_, i));
        paginas_largos_[i] = {paginas.begin(), paginas.end()};
    }
    const auto paginas =
        ComprobarPaginas(esquema_->propias, esquema_->libres, esquema_->pagina, nombre_);
    for (const std::uint32_t pagina : paginas)
        ComprobarPagina(pagina);
    ComprobarOcultas();
    ComprobarPiezasSueltas();
    ComprobarContadores();
    for (std::size_t i = 0; i < esquema_->reales.size(); ++i) {
        VerificadorIndice(v_, *esquema_, i).Hacer(std::move(entradas_[i]), sin_clave_[i]);
    }
}

void VerificadorTabla::ComprobarDefinicion() {
    for (const std::uint32_t pagina : esquema_->cadena) {
        v_.Reclamar(pagina, "la definición de " + nombre_);
    }
    if (esquema_->largo != esquema_->largo_dicho) {
        v_.Falla("La definición de " + nombre_ + " mide " + std::to_string(esquema_->largo) +
                 " bytes y dice " + std::to_string(esquema_->largo_dicho) + ".");
    }
    if (esquema_->clase != Esquema::kClaseUsuario && esquema_->clase != Esquema::kClaseSistema) {
        v_.Falla("La definición de " + nombre_ + " no es de usuario ni de sistema.");
    }
    std::vector<std::size_t> ocupados(kTamPagina, 0);
    for (std::size_t i = 0; i < esquema_->fisicas.size(); ++i) {
        const ColumnaFisica& f = esquema_->fisicas[i];
        if (!f.fija || esquema_->tabla.columnas[i].tipo == TipoColumna::Logico) continue;
        const auto desde = ocupados.begin() + f.desplazamiento;
        if (std::any_of(desde, desde + f.bytes, [](std::size_t n) { return n != 0; })) {
            v_.Falla(NombrarColumna(*esquema_, i) + " ocupa el lugar de otra.");
        }
        std::fill(desde, desde + f.bytes, std::size_t{1});
    }
}

std::vector<std::uint32_t> VerificadorTabla::ComprobarPaginas(Puntero propias, Puntero libres,
                                                              std::uint32_t dueno,
                                                              const std::string& quien) {
    std::vector<std::uint32_t> buenas;
    const auto miembros = v_.ReclamarMapa(propias, quien);
    for (const std::uint32_t pagina : miembros) {
        const bool suya = v_.Reclamar(pagina, quien);
        if (v_.ComprobarPaginaDatos(pagina, dueno) && suya) buenas.push_back(pagina);
    }
    for (const std::uint32_t pagina : v_.ReclamarMapa(libres, quien)) {
        if (!std::binary_search(miembros.begin(), miembros.end(), pagina)) {
            v_.Falla("La página " + std::to_string(pagina) + " figura con lugar para " + quien +
                     " y no es suya.");
        }
    }
    return buenas;
}

void VerificadorTabla::ComprobarPagina(std::uint32_t numero) {
    const auto pagina = v_.Archivo().Leer(numero);
    if (!v_.Bien(pagina)) return;
    for (std::size_t i = 0; i < NumeroDeRanuras(**pagina); ++i) {
        const auto ranura = LeerRanura(**pagina, i);
        const Puntero lugar{numero, static_cast<std::uint8_t>(i)};
        if (!ranura || ranura->Borrada()) continue;
        if (ranura->Oculta()) {
            ocultas_.insert(lugar);
            continue;
        }
        std::vector<Puntero> paso;
        const auto contenido = SeguirFila(v_.Archivo(), *esquema_, lugar, &paso);
        if (!v_.Bien(contenido)) continue;
        for (const Puntero destino : paso) {
            if (!llegadas_.insert(destino).second) {
                v_.Falla("Dos filas de " + nombre_ + " llevan a la " + destino.ATexto() + ".");
            }
        }
        ComprobarFila({numero, lugar.fila}, contenido->Bytes());
    }
}

void VerificadorTabla::ComprobarFila(IdFila id, std::span<const std::uint8_t> bytes) {
    ++filas_;
    // Written out only for the row that has something wrong.
    const auto fila = [&] {
        return "La fila de la " + Puntero{id.pagina, id.fila}.ATexto() + ", de " + nombre_;
    };
    const auto vista = VistaFila::De(*esquema_, bytes);
    if (!vista) {
        v_.Falla(fila() + ", no se puede leer.");
        return;
    }
    if (!vista->PosicionesSanas()) v_.Falla(fila() + ", tiene valores fuera de su lugar.");
    const auto leida = LeerValores(lectura_, *esquema_, bytes, fila_);
    if (!leida) {
        v_.Falla(fila() + ": " + leida.error().mensaje);
        return;
    }
    if (esquema_->autonumerica) {
        const auto* numero = std::get_if<std::int32_t>(&fila_[*esquema_->autonumerica]);
        if (numero != nullptr) mayor_numero_ = std::max(mayor_numero_, *numero);
    }
    ComprobarLargos(*vista, fila);
    ComprobarClaves(id, fila);
}

void VerificadorTabla::ComprobarLargos(const VistaFila& vista, const NombreFila& fila) {
    for (std::size_t i = 0; i < esquema_->fisicas.size(); ++i) {
        if (!EsLargo(esquema_->tabla.columnas[i].tipo)) continue;
        const auto celda = CeldaDeFila(*esquema_, vista, i);
        if (!celda || celda->bytes.empty()) continue;
        Presupuesto presupuesto(v_.Archivo());
        std::vector<std::uint8_t> valor;
        std::vector<Puntero> piezas;
        if (!v_.Bien(LeerLargo(v_.Archivo(), celda->bytes, presupuesto, valor, &piezas))) continue;
        for (const Puntero pieza : piezas) {
            v_.ReclamarPieza(pieza, fila());
            if (TieneMapas(esquema_->fisicas[i]) && paginas_largos_[i].count(pieza.pagina) == 0) {
                v_.FallaDe(*esquema_, fila() + ", guarda un valor largo en la página " +
                                          std::to_string(pieza.pagina) +
                                          ", que no es de su columna.");
            }
        }
    }
}

void VerificadorTabla::ComprobarClaves(IdFila id, const NombreFila& fila) {
    for (std::size_t i = 0; i < esquema_->reales.size(); ++i) {
        const IndiceReal& real = esquema_->reales[i];
        const std::size_t nulos = NulosDeClave(*esquema_, real, fila_);
        if (real.Requerido() && nulos > 0) {
            v_.Falla(fila() + ", no tiene valor para el índice " + real.nombre + ".");
        }
        if (real.IgnoraNulos() && nulos == real.columnas.size()) continue;
        const auto clave = ClaveDeFila(*esquema_, real, fila_);
        if (clave) {
            entradas_[i].push_back(EntradaDe(*clave, id));
        } else {
            sin_clave_[i].insert(id);
        }
    }
}

void VerificadorTabla::ComprobarOcultas() {
    std::size_t sueltas = 0;
    for (const Puntero lugar : ocultas_) {
        if (llegadas_.count(lugar) == 0) ++sueltas;
    }
    if (sueltas == 0) return;
    v_.Rareza("Hay " + std::to_string(sueltas) + " contenidos de filas movidas de " + nombre_ +
              " que no son de ninguna fila.");
}

void VerificadorTabla::ComprobarPiezasSueltas() {
    for (std::size_t i = 0; i < paginas_largos_.size(); ++i) {
        std::size_t sueltas = 0;
        for (const std::uint32_t numero : paginas_largos_[i]) {
            const auto pagina = v_.Archivo().Leer(numero);
            if (!v_.Bien(pagina)) continue;
            for (std::size_t k = 0; k < NumeroDeRanuras(**pagina); ++k) {
                const auto ranura = LeerRanura(**pagina, k);
                const Puntero lugar{numero, static_cast<std::uint8_t>(k)};
                if (ranura && !ranura->Borrada() && !v_.PiezaUsada(lugar)) ++sueltas;
            }
        }
        if (sueltas == 0) continue;
        v_.Rareza("Hay " + std::to_string(sueltas) + " piezas de valores largos de " +
                  NombrarColumna(*esquema_, i) + " que no son de ninguna fila.");
    }
}

void VerificadorTabla::ComprobarContadores() {
    const auto pagina = v_.Archivo().Leer(esquema_->pagina);
    if (!v_.Bien(pagina)) return;
    const std::uint32_t dichas = U32((*pagina)->data() + kPosFilas);
    if (dichas != filas_) {
        v_.FallaDe(*esquema_, "Según su definición, " + nombre_ + " tiene " +
                                  std::to_string(dichas) + " filas; hay " + std::to_string(filas_) +
                                  ".");
    }
    const auto ultimo = static_cast<std::int32_t>(U32((*pagina)->data() + kPosAutonumerico));
    if (esquema_->autonumerica && ultimo < mayor_numero_) {
        v_.Rareza("El contador de " + nombre_ + " va por " + std::to_string(ultimo) +
                  " y hay un número " + std::to_string(mayor_numero_) + ".");
    }
}

}  // namespace quimo::jet
