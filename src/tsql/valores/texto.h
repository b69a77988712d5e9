#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/texto.h"

namespace quimo::tsql {

/// Text rules of the dialect. Texts are UTF-8; a malformed byte counts as one character of its own.

using base::AgregarCaracter;
using base::AMayusculas;
using base::AMinusculas;
using base::Mayuscula;
using base::Minuscula;
using base::SiguienteCaracter;

std::u32string ACaracteres(std::string_view texto);
std::string AUtf8(std::u32string_view caracteres);

/// Characters of a text.
int ContarCaracteres(std::string_view texto);
/// Bytes of the first `caracteres` characters.
std::size_t BytesDe(std::string_view texto, int caracteres);

/// The order of texts: without case, with accents, blanks at the end left out. Letters are ordered
/// by their base letter first, accents break ties. Negative, 0 or positive.
int Comparar(std::string_view a, std::string_view b);
/// Names are told apart without case.
bool MismoNombre(std::string_view a, std::string_view b);

std::string_view SinBlancosAlFinal(std::string_view texto);
/// Without blanks at both ends.
std::string_view Recortar(std::string_view texto);

/// LIKE: % _ [a-z] [^a-z] and an escape character (0: none). Without case, with accents.
bool Como(std::string_view texto, std::string_view patron, char32_t escape);

/// A text between single quotes, those inside doubled.
std::string EntreApostrofes(std::string_view texto);
/// A name between double quotes, those inside doubled.
std::string EntreComillas(std::string_view nombre);

}  // namespace quimo::tsql
