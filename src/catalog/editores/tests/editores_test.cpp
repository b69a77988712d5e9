#include "base_catalogo.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {
namespace {

using foundation::Respuesta;

const QString& PreguntaBorrar() {
    static const QString kTexto = u"¿Esta seguro de borrar el registro?"_s;
    return kTexto;
}

/// One walk over every declaration: the next catalogue is tested by being declared.
class TodosTest : public pruebas::CatalogoTest, public testing::WithParamInterface<int> {
protected:
    const EditorDef& Def() const { return *Editores()[static_cast<std::size_t>(GetParam())]; }

    /// Fills what a new row needs; `nombre` goes into the unique text.
    void Llenar(EditorSesion& sesion, const QString& nombre) {
        for (qsizetype i = 1; i < std::ssize(Def().campos); ++i) {
            const CampoDef& campo = Def().campos[static_cast<std::size_t>(i)];
            switch (campo.tipo) {
                case TipoCampo::Texto:
                    sesion.Escribir(i, i == 1 ? nombre : u"Año ñu"_s);
                    break;
                case TipoCampo::Numero:
                    sesion.Escribir(i, u"12.5"_s);
                    break;
                case TipoCampo::Codigo:
                case TipoCampo::Lista:
                    sesion.Elegir(i, 0);
                    break;
                case TipoCampo::Clave:
                case TipoCampo::Casilla:
                    break;
            }
        }
    }
    QString Guardados(const QString& nombre) {
        return Filas(u"SELECT COUNT(*) AS N FROM "_s + Def().tabla.toString() + u" WHERE "_s +
                     Def().campos[1].columna.toString() + u"='"_s + nombre + u"'"_s);
    }
};

TEST_P(TodosTest, SusColumnasSonDeSuTabla) {
    const auto sesion = Abrir(Def());
    for (const CampoDef& campo : Def().campos) {
        if (campo.columna.isEmpty()) continue;
        EXPECT_GE(sesion->Conjunto()->IndiceDe(campo.columna.toString()), 0)
            << campo.columna.toString().toStdString();
    }
    for (std::size_t d = 0; d < Def().detalles.size(); ++d) {
        const QString clave = sesion->Clave();
        EXPECT_TRUE(sesion->Detalles()[d].Cargar(clave));
    }
    EXPECT_EQ(Mostrado(), QString());
}

TEST_P(TodosTest, AltaCambioCancelarRepetidoYBorrado) {
    const auto sesion = Abrir(Def());
    const qsizetype habia = sesion->Conjunto()->RecordCount();
    ASSERT_GT(habia, 0);
    const QString primera = sesion->Clave();

    sesion->Nuevo();
    EXPECT_EQ(sesion->TextoTeclas(), u"F5=Aceptar ESC=Cancelar"_s);
    EXPECT_EQ(sesion->Clave(), QString());
    Llenar(*sesion, u"Peña O'Hara"_s);
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    EXPECT_EQ(sesion->TextoTeclas(), u"INS=Nuevo,F6=Modificar,DEL=Borrar"_s);
    EXPECT_EQ(sesion->TextoRegistros(), u"Registros: "_s + QString::number(habia + 1));
    EXPECT_EQ(Guardados(u"Peña O''Hara"_s), u"1"_s);
    const QString clave = sesion->Clave();
    ASSERT_GT(clave.toInt(), 0);

    sesion->Modificar();
    sesion->Escribir(1, u"Peña 'Segunda'"_s);
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    EXPECT_EQ(sesion->Clave(), clave);
    EXPECT_EQ(sesion->Campos().Valor(1), u"Peña 'Segunda'"_s);
    EXPECT_EQ(Guardados(u"Peña ''Segunda''"_s), u"1"_s);

    sesion->Modificar();
    sesion->Escribir(1, u"No llega"_s);
    sesion->Cancelar();
    EXPECT_EQ(sesion->Campos().Valor(1), u"Peña 'Segunda'"_s);
    sesion->Nuevo();
    sesion->Escribir(1, u"Tampoco"_s);
    sesion->Cancelar();
    EXPECT_EQ(sesion->Clave(), clave);
    EXPECT_EQ(sesion->Conjunto()->RecordCount(), habia + 1);

    sesion->Nuevo();
    Llenar(*sesion, u"Peña 'Segunda'"_s);
    EXPECT_FALSE(sesion->Guardar());
    EXPECT_EQ(Mostrado(), Def().repetido.toString());
    EXPECT_TRUE(sesion->EnEdicion());
    sesion->Cancelar();
    EXPECT_EQ(sesion->Clave(), clave);

    dialogos_.Responder(PreguntaBorrar(), Respuesta::No);
    EXPECT_FALSE(sesion->Borrar());
    dialogos_.Responder(PreguntaBorrar(), Respuesta::Si);
    EXPECT_TRUE(sesion->Borrar()) << Mostrado().toStdString();
    EXPECT_EQ(Guardados(u"Peña ''Segunda''"_s), u"0"_s);
    EXPECT_EQ(sesion->Conjunto()->RecordCount(), habia);
    EXPECT_TRUE(sesion->Mover(u"PRIMERO"_s));
    EXPECT_EQ(sesion->Clave(), primera);
    EXPECT_EQ(Mostrado(), QString());
}

TEST_P(TodosTest, SeMueveYAvisaEnLosExtremos) {
    const auto sesion = Abrir(Def());
    const QString primera = sesion->Clave();
    EXPECT_TRUE(sesion->Mover(u"anterior"_s));
    EXPECT_EQ(Mostrado(), u"No hay mas registros"_s);
    EXPECT_EQ(sesion->Clave(), primera);
    EXPECT_TRUE(sesion->Mover(u"SIGUIENTE"_s));
    EXPECT_NE(sesion->Clave(), primera);
    EXPECT_TRUE(sesion->Mover(u"ULTIMO"_s));
    const QString ultima = sesion->Clave();
    EXPECT_TRUE(sesion->Mover(u"SIGUIENTE"_s));
    EXPECT_EQ(Mostrado(), u"No hay mas registros"_s);
    EXPECT_EQ(sesion->Clave(), ultima);
    EXPECT_FALSE(sesion->Mover(u"OTRO"_s));
    EXPECT_EQ(Mostrado(), u"No existe ese desplazamiento"_s);
}

TEST_P(TodosTest, FaltaElPrimerCampoObligatorio) {
    const auto sesion = Abrir(Def());
    sesion->Nuevo();
    sesion->TomarFoco();
    EXPECT_FALSE(sesion->Guardar());
    const CampoDef& primero = Def().campos[1];
    EXPECT_EQ(Mostrado(), primero.falta.isEmpty()
                              ? u"Falta el campo  de "_s + primero.etiqueta.toString()
                              : u"Falta el campo "_s + primero.falta.toString());
    EXPECT_EQ(sesion->TomarFoco(), primero.control.toString());
    EXPECT_TRUE(sesion->EnEdicion());
}

TEST_P(TodosTest, TextoLargoYEmojiSeRechazanYNadaSePierde) {
    const auto sesion = Abrir(Def());
    const QString antes = sesion->Campos().Valor(1);
    const int largo = sesion->Campos().LargoMaximo(1, sesion->Conjunto());
    ASSERT_GT(largo, 0);
    struct Caso {
        QString escrito;
        QString se_dice;  // at the end
    };
    const Caso casos[] = {{QString(largo + 1, u'x'), QString::number(largo + 1)},
                          {u"Pizza 🍕"_s, u"🍕"_s},
                          {u"Taco ★"_s, u"★"_s},
                          {u"Łódź"_s, u"Ł"_s},
                          {u"a\tb"_s, u"tabulador"_s}};
    for (const auto& [malo, se_dice] : casos) {
        sesion->Modificar();
        sesion->Escribir(1, malo);
        EXPECT_FALSE(sesion->Guardar());
        const QString dicho = Mostrado();
        EXPECT_TRUE(dicho.startsWith(u"El campo "_s + Def().campos[1].etiqueta.toString()));
        EXPECT_TRUE(dicho.endsWith(se_dice)) << dicho.toStdString();
        EXPECT_EQ(sesion->Campos().Valor(1), malo);
        sesion->Cancelar();
        EXPECT_EQ(sesion->Campos().Valor(1), antes);
    }
}

/// A paste from elsewhere may bring an accent apart from its letter.
TEST_P(TodosTest, LosAcentosSueltosSeUnenASuLetra) {
    const auto sesion = Abrir(Def());
    sesion->Nuevo();
    Llenar(*sesion, u"Jalapen\u0303o cafe\u0301"_s);
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    EXPECT_EQ(Guardados(u"Jalapeño café"_s), u"1"_s);
    EXPECT_EQ(sesion->Campos().Valor(1), u"Jalapeño café"_s);
}

TEST_P(TodosTest, OtroUsuarioBorraOCambiaMientras) {
    const auto sesion = Abrir(Def());
    sesion->Nuevo();
    Llenar(*sesion, u"Efímera"_s);
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    const QString tabla = Def().tabla.toString();
    const QString donde = u" WHERE "_s + Def().ColumnaClave().toString() + u'=' + sesion->Clave();
    const QString pregunta =
        u"Otro usuario cambió este registro mientras se modificaba. ¿Desea guardar sobre sus cambios?"_s;

    sesion->Modificar();
    Otro((u"UPDATE "_s + tabla + u" SET "_s + Def().campos[1].columna.toString() + u"='Ajena'"_s +
          donde));
    sesion->Escribir(1, u"Mía"_s);
    dialogos_.Responder(pregunta, Respuesta::No);
    EXPECT_FALSE(sesion->Guardar());
    EXPECT_EQ(Guardados(u"Ajena"_s), u"1"_s);
    dialogos_.Responder(pregunta, Respuesta::Si);
    EXPECT_TRUE(sesion->Guardar());
    EXPECT_EQ(Guardados(u"Mía"_s), u"1"_s);

    sesion->Modificar();
    sesion->Escribir(1, u"Tarde"_s);
    for (const DetalleDef& detalle : Def().detalles) {
        Otro((u"DELETE FROM "_s + detalle.tabla.toString() + u" WHERE "_s +
              detalle.columna_registro.toString() + u'=' + sesion->Clave()));
    }
    Otro((u"DELETE FROM "_s + tabla + donde));
    EXPECT_FALSE(sesion->Guardar());
    EXPECT_EQ(Mostrado(),
              u"Otro usuario borró este registro mientras se modificaba: no se puede guardar"_s);
    EXPECT_EQ(sesion->Campos().Valor(1), u"Tarde"_s);
    sesion->Cancelar();
    EXPECT_NE(sesion->Campos().Valor(1), u"Mía"_s);
}

TEST_P(TodosTest, ConexionPerdidaAlGuardarConservaLoEscrito) {
    const auto sesion = Abrir(Def());
    const QString perdida = u"Se perdio la conexión con el servidor"_s;
    // Whatever statement of the save it hits, all can be saved afterwards, once.
    for (int cual = 1; cual < 12; ++cual) {
        const QString nombre = u"Terca %1"_s.arg(cual);
        sesion->Nuevo();
        Llenar(*sesion, nombre);
        int van = 0;
        cinta_->falla = [&](const QString& /*sentencia*/) -> std::optional<data::FalloSql> {
            if (++van == cual) return pruebas::ConexionRota();
            return std::nullopt;
        };
        const bool guardado = sesion->Guardar();
        cinta_->falla = {};
        if (guardado) {
            EXPECT_TRUE(Mostrado().isEmpty() || van >= cual);
            break;
        }
        // The row is written before its number is read: what was then cut off is there already.
        const bool a_medias =
            Guardados(nombre) == u"1"_s && sesion->EstadoActual() == EditorSesion::Estado::Alta;
        EXPECT_EQ(Mostrado(), perdida);
        EXPECT_TRUE(sesion->EnEdicion());
        EXPECT_EQ(sesion->Campos().Valor(1), nombre);
        if (a_medias) {
            sesion->Cancelar();
        } else {
            EXPECT_TRUE(sesion->Guardar()) << cual << ' ' << Mostrado().toStdString();
        }
        EXPECT_EQ(Guardados(nombre), u"1"_s);
        // The menu's next key stays the same as long as there is no new group.
        Otro(u"DELETE FROM "_s + Def().tabla.toString() + u" WHERE "_s +
             Def().campos[1].columna.toString() + u"='"_s + nombre + u"'"_s);
    }
}

TEST_P(TodosTest, CerrarConCambiosPregunta) {
    const QString pregunta = u"Hay cambios sin guardar. ¿Desea guardarlos?"_s;
    const auto sesion = Abrir(Def());
    EXPECT_TRUE(sesion->PuedeCerrar());
    sesion->Nuevo();
    EXPECT_TRUE(sesion->PuedeCerrar());
    sesion->Nuevo();
    sesion->Escribir(1, u"A medias"_s);
    dialogos_.Responder(pregunta, Respuesta::Cancelar);
    EXPECT_FALSE(sesion->PuedeCerrar());
    EXPECT_EQ(sesion->Campos().Valor(1), u"A medias"_s);
    dialogos_.Responder(pregunta, Respuesta::No);
    EXPECT_TRUE(sesion->PuedeCerrar());
    EXPECT_EQ(Guardados(u"A medias"_s), u"0"_s);
}

TEST_P(TodosTest, TablaVacia) {
    for (const EditorDef* const def : Editores()) {
        for (const DetalleDef& detalle : def->detalles)
            Otro(u"DELETE FROM "_s + detalle.tabla.toString());
    }
    for (const char16_t* tabla :
         {u"ProductosXseccion", u"Secciones_Paquete", u"ProductoXTipo_Cortesia",
          u"Detalle_Gpo_Promocional", u"Detalle_Gpo_Obsequios", u"Producto", u"Terminal",
          u"Grupo_Modificadores"}) {
        ado_.Conexion().Ejecutar(u"UPDATE Impresora SET ID_Terminal=NULL"_s);
        Otro((u"DELETE FROM "_s + QString::fromUtf16(tabla)));
    }
    Otro((u"DELETE FROM "_s + Def().tabla.toString()));
    const auto sesion = Abrir(Def());
    EXPECT_EQ(sesion->TextoRegistros(), u"Registros: 0"_s);
    sesion->Modificar();
    EXPECT_FALSE(sesion->EnEdicion());
    EXPECT_FALSE(sesion->Borrar());
    EXPECT_EQ(Mostrado(), QString());
    EXPECT_FALSE(sesion->Mover(u"PRIMERO"_s));
    EXPECT_EQ(Mostrado(), u"no hay registros"_s);

    if (&Def() == &kOpProductos) return;  // needs groups, which are gone
    sesion->Nuevo();
    Llenar(*sesion, u"Primera"_s);
    ASSERT_TRUE(sesion->Guardar()) << Mostrado().toStdString();
    if (!Def().consulta_clave.isEmpty()) {
        EXPECT_EQ(sesion->Clave(), u"1"_s);
    }
    dialogos_.Responder(PreguntaBorrar(), Respuesta::Si);
    EXPECT_TRUE(sesion->Borrar());
    EXPECT_EQ(sesion->TextoRegistros(), u"Registros: 0"_s);
    EXPECT_EQ(sesion->Clave() + sesion->Campos().Valor(1), QString());
}

INSTANTIATE_TEST_SUITE_P(
    Catalogos, TodosTest, testing::Range(0, static_cast<int>(Editores().size())),
    [](const auto& caso) {
        return Editores()[static_cast<std::size_t>(caso.param)]->nombre.toString().toStdString();
    });

}  // namespace
}  // namespace quimo::catalog
