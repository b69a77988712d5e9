#include "jet/recorrido.h"

#include <string>

#include "jet/mapa.h"

namespace quimo::jet {

Result<std::unique_ptr<RecorridoPaginas>> RecorridoPaginas::Empezar(
    Almacen& almacen, std::shared_ptr<const Esquema> esquema) {
    std::unique_ptr<RecorridoPaginas> recorrido(new RecorridoPaginas(almacen, std::move(esquema)));
    QUIMO_TRY(recorrido->paginas_, Mapa(almacen, recorrido->esquema_->propias).Miembros());
    recorrido->generacion_ = almacen.Generacion();
    return recorrido;
}

Result<bool> RecorridoPaginas::Avanzar() {
    if (acabado_) return false;
    acabado_ = true;
    QUIMO_TRY(const bool hay, BuscarFila());
    if (hay) {
        ++contadas_;
        acabado_ = false;
        return true;
    }
    QUIMO_TRY_VOID(ComprobarCuenta());
    return false;
}

Result<bool> RecorridoPaginas::BuscarFila() {
    if (almacen_.Generacion() != generacion_ && pagina_ != nullptr) {
        generacion_ = almacen_.Generacion();
        cambio_ = true;
        lectura_.presupuesto = Presupuesto(almacen_);
        QUIMO_TRY(pagina_, almacen_.Leer(paginas_[proxima_ - 1]));
        // The table may have been emptied, and the page be another's now.
        if (!EsDeDatos(*pagina_) || Dueno(*pagina_) != esquema_->pagina) pagina_ = nullptr;
    }
    while (true) {
        if (pagina_ == nullptr || fila_ >= NumeroDeRanuras(*pagina_)) {
            QUIMO_TRY(const bool hay, PasarPagina());
            if (!hay) return false;
            continue;
        }
        const std::size_t fila = fila_++;
        const auto ranura = LeerRanura(*pagina_, fila);
        if (!ranura) {
            return almacen_.Danado("la página " + std::to_string(paginas_[proxima_ - 1]) +
                                   " tiene filas imposibles");
        }
        if (ranura->Oculta()) continue;
        id_ = {paginas_[proxima_ - 1], static_cast<std::uint8_t>(fila)};
        contenido_ = {pagina_, {id_.pagina, id_.fila}, *ranura};
        if (ranura->Movida()) {
            QUIMO_TRY(contenido_, SeguirFila(almacen_, *esquema_, contenido_.lugar));
        }
        return true;
    }
}

Result<bool> RecorridoPaginas::PasarPagina() {
    pagina_ = nullptr;
    if (proxima_ == paginas_.size()) return false;
    const std::uint32_t numero = paginas_[proxima_++];
    QUIMO_TRY(pagina_, almacen_.Leer(numero));
    fila_ = 0;
    if (EsDeDatos(*pagina_) && Dueno(*pagina_) == esquema_->pagina) return true;
    cambio_ = cambio_ || almacen_.Generacion() != generacion_;
    pagina_ = nullptr;
    if (cambio_) return true;  // emptied meanwhile
    return almacen_.Danado("la página " + std::to_string(numero) + " no es de la tabla " +
                           esquema_->tabla.nombre);
}

Result<void> RecorridoPaginas::ComprobarCuenta() const {
    if (cambio_ || almacen_.Generacion() != generacion_ || esquema_->EsDeSistema()) return {};
    QUIMO_TRY(const PaginaLeida definicion, almacen_.Leer(esquema_->pagina));
    const std::uint32_t dichas = U32(definicion->data() + kPosFilas);
    if (dichas == contadas_) return {};
    return almacen_.Danado("la tabla " + esquema_->tabla.nombre + " debía tener " +
                           std::to_string(dichas) + " filas y tiene " + std::to_string(contadas_));
}

}  // namespace quimo::jet
