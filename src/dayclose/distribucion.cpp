#include "dayclose/distribucion.h"

#include <QFile>

#include "dayclose/valor_terminal.h"
#include "foundation/transaccion.h"
#include "foundation/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using foundation::ClsAdo;
using foundation::Fila;
using foundation::Transaccion;

namespace {

const QString& SobrePlantilla() {
    static const QString kTexto = u"Plantilla de las terminales"_s;
    return kTexto;
}

template <typename T>
ResultadoCierre<T> DePlantilla(base::Result<T> resultado) {
    if (!resultado) return DeFallo(resultado.error(), SobrePlantilla());
    return std::move(resultado).value();
}

ResultadoCierre<void> DePlantilla(const base::Result<void>& resultado) {
    if (!resultado) return DeFallo(resultado.error(), SobrePlantilla());
    return {};
}

Interrupcion NoCabe(const QVariant& valor, const QString& columna, const QString& tabla) {
    return {Interrupcion::Motivo::Error, kDatoNoCabe,
            u"El valor '"_s + foundation::TextoDeValor(valor) + u"' no cabe en la columna "_s +
                columna + u" de la tabla "_s + tabla + u" de las terminales."_s};
}

QString TextoDe(const char16_t* texto) {
    return texto == nullptr ? QString() : QString::fromUtf16(texto);
}

ResultadoCierre<QVector<Terminal>> TerminalesPorMenu(ClsAdo& ado) {
    QUIMO_TRY(const QVector<Fila> filas,
              LeerFilas(ado,
                        u"SELECT ID_Terminal,Nombre_Terminal,ID_Menu FROM Terminal WHERE "
                        u"Estado_Terminal='A' ORDER BY ID_Menu"_s));
    QVector<Terminal> terminales;
    for (const Fila& fila : filas) {
        terminales.append({fila[0].toInt(), fila[1].toString(), fila[2].toInt()});
    }
    return terminales;
}

/// 1 for NULL, else one more.
qint64 Siguiente(const QVector<Fila>& maximo) {
    const QVariant valor = maximo.isEmpty() ? QVariant() : maximo.first().value(0);
    return valor.isValid() ? valor.toLongLong() + 1 : 1;
}

}  // namespace

ResultadoCierre<qint64> SiguienteFolioProductos(ClsAdo& ado, int terminal) {
    const QString prefijo = QString::number(terminal);
    QUIMO_TRY(const QVector<Fila> filas,
              LeerFilas(ado,
                        u"SELECT MAX(ID_ProductosXCuenta) AS ID FROM ProductosXCuenta WHERE "
                        u"ID_ProductosXCuenta LIKE '"_s +
                            prefijo + u"%'"_s));
    const QVariant maximo = filas.isEmpty() ? QVariant() : filas.first().value(0);
    if (!maximo.isValid()) return 1;
    return foundation::TextoDeValor(maximo).mid(prefijo.size()).toLongLong() + 1;
}

ResultadoCierre<BaseNueva> BaseNueva::Preparar(ClsAdo& ado, const QString& carpeta) {
    const QString archivo = carpeta + u"/Quimo_Terminal.mdb"_s;
    QUIMO_INTENTAR(const Copiado copiado, CopiarEntero(carpeta + u"/Plantilla.mdb"_s, archivo));
    static_cast<void>(copiado);
    QUIMO_TRY(jet::BaseDatos base,
              DePlantilla(jet::BaseDatos::Abrir(archivo.toStdString(), jet::Modo::Escritura)));
    BaseNueva nueva(ado, std::move(base), archivo);
    for (const DefCatalogo& catalogo : Catalogos()) {
        const QString destino = TextoDe(catalogo.destino);
        QUIMO_TRY_VOID(
            nueva.Copiar(destino, TextoDe(catalogo.columnas),
                         catalogo.fuentes == nullptr ? destino : TextoDe(catalogo.fuentes),
                         TextoDe(catalogo.condicion)));
    }
    return nueva;
}

ResultadoCierre<jet::Tabla> BaseNueva::Tabla(const QString& nombre) const {
    return DePlantilla(base_.AbrirTabla(nombre.toStdString()));
}

ResultadoCierre<std::size_t> BaseNueva::Columna(const jet::Tabla& tabla,
                                                const QString& nombre) const {
    auto columna = tabla.Columna(nombre.toStdString());
    if (columna) return *columna;
    Interrupcion fallo = DeFallo(columna.error(), SobrePlantilla());
    fallo.numero = kColumnaAusente;
    return fallo;
}

ResultadoCierre<void> BaseNueva::Copiar(const QString& destino, const QString& columnas,
                                        const QString& fuentes, const QString& condicion) {
    QString consulta = u"SELECT "_s + columnas + u" FROM "_s + fuentes;
    if (!condicion.isEmpty()) consulta += u" WHERE "_s + condicion;
    foundation::RecordsetPtr origen;
    if (!ado_->Consultar(origen, consulta)) return FalloPendiente(*ado_);
    QUIMO_TRY(jet::Tabla tabla, Tabla(destino));
    std::vector<std::size_t> lugares;
    for (const foundation::Columna& columna : origen->Columnas()) {
        QUIMO_TRY(const std::size_t lugar, Columna(tabla, columna.nombre));
        lugares.push_back(lugar);
    }
    const jet::DefTabla& definicion = tabla.Definicion();
    jet::Fila valores(definicion.columnas.size());
    for (const Fila& fila : origen->Filas()) {
        for (std::size_t i = 0; i < lugares.size(); ++i) {
            const jet::DefColumna& columna = definicion.columnas[lugares[i]];
            const QVariant& central = fila[static_cast<qsizetype>(i)];
            auto valor = AValorTerminal(central, columna.tipo);
            if (!valor) return NoCabe(central, QString::fromStdString(columna.nombre), destino);
            valores[lugares[i]] = *std::move(valor);
        }
        QUIMO_TRY(const jet::IdFila id, DePlantilla(tabla.Insertar(valores)));
        static_cast<void>(id);
    }
    return {};
}

ResultadoCierre<void> BaseNueva::PonerMenu(int menu) {
    for (const QString& nombre : {u"ProductosXSubmenu"_s, u"Submenu"_s}) {
        QUIMO_TRY(jet::Tabla tabla, Tabla(nombre));
        QUIMO_TRY_VOID(DePlantilla(tabla.Vaciar()));
    }
    QUIMO_TRY_VOID(Copiar(
        u"Submenu"_s, u"Submenu.ID_Submenu,Nombre_Submenu,SubMenu_Fijo,Orden"_s,
        u"Submenu,SubmenuXMenu"_s,
        u"Submenu.ID_Submenu=SubmenuXMenu.ID_Submenu AND ID_Menu="_s + QString::number(menu)));
    QUIMO_TRY_VOID(Copiar(u"ProductosXSubmenu"_s, u"ID_Submenu,ID_Producto"_s,
                          u"ProductosXSubmenu"_s, QString()));
    return PonerPrecios(menu);
}

ResultadoCierre<void> BaseNueva::PonerPrecios(int menu) {
    QUIMO_TRY(const QVector<Fila> precios,
              LeerFilas(*ado_, u"SELECT ID_Producto,Precio FROM PreciosXMenu WHERE ID_Menu="_s +
                                   QString::number(menu)));
    QHash<qint64, QVariant> precio_de;
    for (const Fila& fila : precios)
        precio_de.insert(fila[0].toLongLong(), fila[1]);
    QUIMO_TRY(jet::Tabla productos, Tabla(u"Producto"_s));
    QUIMO_TRY(const std::size_t clave, Columna(productos, u"ID_Producto"_s));
    QUIMO_TRY(const std::size_t columna, Columna(productos, u"Precio_Producto"_s));
    QUIMO_TRY(jet::Cursor cursor, DePlantilla(productos.Recorrer()));
    while (true) {
        QUIMO_TRY(const bool hay, DePlantilla(cursor.Siguiente()));
        if (!hay) return {};
        const jet::Valor& id = cursor.Valores()[clave];
        const auto* numero = std::get_if<std::int32_t>(&id);
        // Without a price in this menu it is 0, also when the menu before had priced it.
        const QVariant precio = numero == nullptr ? QVariant() : precio_de.value(*numero);
        auto valor = AValorTerminal(precio.isValid() ? precio : QVariant(0),
                                    productos.Definicion().columnas[columna].tipo);
        if (!valor) return NoCabe(precio, u"Precio_Producto"_s, u"Producto"_s);
        const jet::Cambio cambio{columna, *std::move(valor)};
        QUIMO_TRY_VOID(DePlantilla(productos.Actualizar(cursor.Id(), std::span(&cambio, 1))));
    }
}

ResultadoCierre<void> BaseNueva::PonerParametro(const char16_t* clave, qint64 valor) {
    QUIMO_TRY(jet::Tabla parametros, Tabla(u"Parametros"_s));
    QUIMO_TRY(const std::size_t columna, Columna(parametros, u"Valor_Num"_s));
    QUIMO_TRY(const std::size_t llave, Columna(parametros, u"ID_Parametro"_s));
    auto nuevo = AValorTerminal(QVariant(valor), parametros.Definicion().columnas[columna].tipo);
    if (!nuevo) return NoCabe(QVariant(valor), u"Valor_Num"_s, u"Parametros"_s);
    const jet::Cambio cambio{columna, *std::move(nuevo)};
    QUIMO_TRY(jet::Cursor cursor, DePlantilla(parametros.Recorrer()));
    while (true) {
        QUIMO_TRY(const bool hay, DePlantilla(cursor.Siguiente()));
        if (!hay) return {};
        const auto* texto = std::get_if<std::u16string>(&cursor.Valores()[llave]);
        if (texto == nullptr) continue;
        if (QString::fromStdU16String(*texto).compare(QString::fromUtf16(clave),
                                                      Qt::CaseInsensitive) != 0) {
            continue;
        }
        QUIMO_TRY_VOID(DePlantilla(parametros.Actualizar(cursor.Id(), std::span(&cambio, 1))));
    }
}

ResultadoCierre<void> BaseNueva::Adaptar(const Terminal& terminal) {
    if (menu_ != terminal.menu) {
        QUIMO_TRY_VOID(PonerMenu(terminal.menu));
        menu_ = terminal.menu;
    }
    QUIMO_TRY_VOID(PonerParametro(u"TERMINAL", terminal.id));
    QUIMO_TRY(const qint64 folio, SiguienteFolioProductos(*ado_, terminal.id));
    QUIMO_TRY_VOID(PonerParametro(u"FOLIOPRODUCTOSX", folio));
    return DePlantilla(base_.Guardar());
}

namespace {

/// Sends one terminal's new database.
class Envio {
public:
    Envio(ContextoCierre& contexto, CierrePendiente& cierre, Terminal terminal)
        : contexto_(contexto),
          cierre_(cierre),
          terminal_(std::move(terminal)),
          remoto_(contexto.Remoto(terminal_.nombre)) {}

    /// Whether an earlier run of this close already put it there: then the terminal may be selling
    /// from it, and it stays.
    ResultadoCierre<bool> YaEntregada() {
        const auto envio = cierre_.De(terminal_.nombre, TextoDe(CierrePendiente::kEnvio));
        if (!envio) return false;
        if (envio->estado == CierrePendiente::kHecho) return true;
        // The run ended around the replacement itself. What is there now tells: the day's file,
        // which the archive knows, or the new one.
        bool nueva = false;
        QUIMO_TRY(const bool visto, Intentar([&]() -> ResultadoArchivo<void> {
                      QUIMO_TRY(const bool existe, contexto_.share.Existe(remoto_));
                      if (!existe) return {};
                      const QString prueba =
                          contexto_.CarpetaLocal(terminal_.nombre) + u"/revision.tmp"_s;
                      QUIMO_TRY_VOID(CrearCarpeta(contexto_.CarpetaLocal(terminal_.nombre)));
                      QUIMO_TRY(const Copiado presente, contexto_.share.Traer(remoto_, prueba));
                      QFile::remove(prueba);
                      QUIMO_TRY(const QString conocida,
                                contexto_.archivo.Buscar(cierre_.Fecha(), terminal_.nombre,
                                                         presente.sha256));
                      nueva = conocida.isEmpty();
                      return {};
                  }));
        if (!visto || !nueva) return false;
        QUIMO_TRY_VOID(Anotar(CierrePendiente::kHecho, envio->detalle));
        return true;
    }

    ResultadoCierre<void> Entregar(const QString& archivo) {
        QUIMO_INTENTAR(const QString sha256, Sha256DeArchivo(archivo));
        QUIMO_TRY(const bool guardado, Intentar([&] { return GuardarPresente(); }));
        if (!guardado) return {};
        QUIMO_TRY_VOID(Anotar(CierrePendiente::kEnviando, sha256));
        QUIMO_TRY(const bool llevado,
                  Intentar([&] { return contexto_.share.Llevar(archivo, remoto_, guardada_); }));
        if (!llevado) return {};
        QUIMO_TRY_VOID(Anotar(CierrePendiente::kHecho, sha256));
        contexto_.resumen.entregadas << terminal_.nombre;
        return {};
    }

private:
    template <typename Operacion>
    ResultadoCierre<bool> Intentar(Operacion operacion) {
        return contexto_.fallas.Ejecutar(terminal_.nombre, operacion);
    }

    /// What is about to be replaced must be in the archive: a share that came back only now holds
    /// sales that nobody has read.
    ResultadoArchivo<void> GuardarPresente() {
        if (!EsNombreDeEquipo(terminal_.nombre)) {
            return FalloDeNumero(FalloArchivo::kNombreIncorrecto, terminal_.nombre);
        }
        QUIMO_TRY(const bool existe, contexto_.share.Existe(remoto_));
        guardada_.clear();
        if (!existe) return {};
        QUIMO_TRY(
            const Archivado archivado,
            contexto_.archivo.Recibir(contexto_.share, remoto_, cierre_.Fecha(), terminal_.nombre));
        guardada_ = archivado.sha256;
        if (archivado.nuevo) {
            contexto_.resumen.avisos
                << u"Las ventas de "_s + terminal_.nombre +
                       u" no se copiaron en este cierre; quedaron guardadas en "_s + archivado.ruta;
        }
        return {};
    }

    ResultadoCierre<void> Anotar(int estado, const QString& sha256) {
        QUIMO_INTENTAR_VOID(cierre_.Anotar(contexto_.ado.Conexion(), terminal_.id, terminal_.nombre,
                                           TextoDe(CierrePendiente::kEnvio), {estado, sha256}));
        return {};
    }

    ContextoCierre& contexto_;
    CierrePendiente& cierre_;
    Terminal terminal_;
    QString remoto_;
    QString guardada_;  ///< digest of the archived file that is to be replaced; empty for none
};

/// The central counters and the end of the close, at once: a close that goes on later must not
/// send the new counters to the terminals that are still missing.
ResultadoCierre<void> Terminar(ContextoCierre& contexto, CierrePendiente& cierre) {
    struct Folio {
        QString parametro;
        QString consulta;
    };
    const Folio folios[] = {
        {u"FOLIOPAGO"_s, u"SELECT MAX(ID_Pago) AS ID FROM Pago"_s},
        {u"FOLIOCOMANDA"_s, u"SELECT MAX(ID_Comanda) AS ID FROM Comanda"_s},
    };
    QUIMO_INTENTAR(Transaccion transaccion, Transaccion::Iniciar(contexto.ado.Conexion()));
    for (const Folio& folio : folios) {
        QUIMO_TRY(const QVector<Fila> maximo, LeerFilas(contexto.ado, folio.consulta));
        if (!contexto.ado.Modificar(nullptr, u"Parametros"_s,
                                    u"Valor_Num="_s + QString::number(Siguiente(maximo)),
                                    u"ID_Parametro='"_s + folio.parametro + u'\'')) {
            return FalloPendiente(contexto.ado);
        }
    }
    QUIMO_INTENTAR_VOID(cierre.Olvidar(contexto.ado.Conexion()));
    QUIMO_INTENTAR_VOID(transaccion.Confirmar());
    return {};
}

}  // namespace

ResultadoCierre<void> DistribuirCatalogos(ContextoCierre& contexto, CierrePendiente& cierre) {
    contexto.fallas.Entrar(ManejadorFallas::Fase::Distribuir);
    contexto.Progreso(u"Preparando la base de datos de las terminales"_s);
    QUIMO_TRY(BaseNueva nueva, BaseNueva::Preparar(contexto.ado, contexto.carpeta));
    QUIMO_TRY(const QVector<Terminal> terminales, TerminalesPorMenu(contexto.ado));
    for (const Terminal& terminal : terminales) {
        Envio envio(contexto, cierre, terminal);
        QUIMO_TRY(const bool ya_entregada, envio.YaEntregada());
        if (ya_entregada) continue;
        contexto.Progreso(u"Enviando catálogos a "_s + terminal.nombre);
        QUIMO_TRY_VOID(nueva.Adaptar(terminal));
        QUIMO_TRY_VOID(envio.Entregar(nueva.Archivo()));
    }
    contexto.resumen.fallas_envio = contexto.fallas.Lista();
    if (!contexto.fallas.Lista().isEmpty()) {
        contexto.ado.Dialogo().Avisar(
            u"Error de comunicación con terminales:\n"_s + contexto.fallas.Lista().join(u'\n'),
            foundation::Icono::Critico, u"Error fin día"_s);
    }
    return Terminar(contexto, cierre);
}

}  // namespace quimo::dayclose
