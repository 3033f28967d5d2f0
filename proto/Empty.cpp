// Keeps the generated-messages target non-empty while no schema exists.
